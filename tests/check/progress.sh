#!/bin/sh
# The progress bar, on a terminal that script(1) makes: progress.sh VETRO_CHECK SCRATCH_FOLDER. One proof waits, so that
# the run is long, and the others are finished by then.
set -u

check=$1
scratch=$2
bad=0

if ! command -v script >/dev/null; then
  echo "script(1) is not installed: the progress bar is not tried"
  exit 77
fi
complain() {
  echo "$*"
  bad=1
}

rm -rf "$scratch"
mkdir -p "$scratch"
cd "$scratch" || exit 1
printf 'Thm 1. (a)\nforall (x), x = x\n' >library.txt
for i in 1 2 3 4; do
  goal="a + $i > b"
  [ $i -ne 3 ] || goal="a > b + 3"
  printf '{"id": "p%s", "gap_text": "ASSUM:\\n1. a > b\\nGOAL:\\n%s\\n", "script_text": "autosolve all_hypothesis\\n"}\n' $i "$goal"
done >four.jsonl
mkfifo waits.txt
{
  cat four.jsonl
  echo '{"id": "waits", "gap": "waits.txt", "script": "waits.txt", "options": {"timeout": 2}}'
} >five.jsonl

# on_terminal TERM COMMAND: what the terminal gets. It has 60 columns.
on_terminal() {
  TERM=$1 SHELL=/bin/sh script -qec "stty cols 60; $2" /dev/null </dev/null
}
escape=$(printf '\033')
run="$check --library library.txt -j2 --json five.jsonl"
$run >plain 2>plain_errors
[ ! -s plain_errors ] || complain "something on standard error without a terminal"

# shows LINE: it was the bar while the last proof waited, and the bar is gone in the end.
shows() {
  sed "s/\r$escape\[K/\n/g" screen >bars
  grep -qxF -- "$1" bars || complain "no bar '$1': $(cat -v screen)"
  [ "$(tail -c 4 screen)" = "$(printf '\r\033[K')" ] || complain "a bar is left: $(cat -v screen)"
}

on_terminal xterm "NO_COLOR=1 $run >seen" >screen
shows '[####################......] 4 of 5 checked, 1 not verified'
cmp plain seen || bad=1
on_terminal xterm "$run >seen" >screen
shows "[$escape[32m####################$escape[0m......] 4 of 5 checked, 1 not verified"
# A count where the number of proofs is not known, and nothing on a terminal that cannot take a line back.
on_terminal xterm "cat five.jsonl | $check --library library.txt -j2 --json - >seen" >screen
shows '4 checked, 1 not verified'
on_terminal dumb "$run >seen" >screen
[ ! -s screen ] || complain "a bar on a dumb terminal"
# Results on the same terminal stand on lines of their own; a short run shows no bar.
on_terminal xterm "NO_COLOR=1 $check --library library.txt -j2 -q five.jsonl" | tr -d '\r' >screen
grep -q "^failed  *p3$" screen && grep -q "$escape\[Klimit  *waits$" screen || complain "$(cat -v screen)"
on_terminal xterm "$check --library library.txt four.jsonl >seen" >screen
[ ! -s screen ] || complain "a bar in a short run"
# An interrupted run leaves no bar behind.
on_terminal xterm "NO_COLOR=1 timeout -s INT 1 $run >seen" >screen
grep -q "$escape\[Kvetro-check: interrupted" screen || complain "$(cat -v screen)"
exit $bad

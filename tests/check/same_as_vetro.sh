#!/bin/sh
# What vetro-check --logs writes on a proof is byte for byte what vetro writes: same_as_vetro.sh VETRO PROJECT_FOLDER
# SCRATCH_FOLDER. The proofs are the examples, the whole runs of tests/cases, and damaged ones of both.
set -u

vetro=$1
check=$(dirname "$vetro")/vetro-check
project=$2
scratch=$3
bad=0

rm -rf "$scratch"
mkdir -p "$scratch/proofs"
cd "$scratch" || exit 1
cp "$project/examples/library/analysis.txt" library.txt

# proof NAME GAP SCRIPT, and with it one that lacks its last step, one with wrong numbers, and one that does not parse.
proof() {
  for kind in whole cut wrong broken; do
    mkdir "proofs/$1-$kind"
    cp "$2" "proofs/$1-$kind/gap.txt"
  done
  cp "$3" "proofs/$1-whole/script.txt"
  sed '$d' "$3" >"proofs/$1-cut/script.txt"
  sed '2,$s/hypothesis \([0-9]\)/hypothesis 1\1/' "$3" >"proofs/$1-wrong/script.txt"
  sed '$s/$/ {/' "$3" >"proofs/$1-broken/script.txt"
}
for folder in "$project"/examples/*/ "$project"/tests/cases/*/; do
  [ -e "$folder/script.txt" ] || continue
  gap=$folder/gap.txt
  [ -e "$gap" ] || gap=$project/tests/cases/default/gap.txt
  proof "$(basename "$folder")" "$gap" "$folder/script.txt"
done
mkdir -p proofs/missing
: >proofs/missing/script.txt
: >proofs/missing/gap.txt

cat >config.ini <<'END'
[ROOT_PATH]
ROOT_PATH = .
[THEOREM_LIBRARY]
THMEOREM_LIB_SET = library.txt
[DSL_RESPONSES]
DSL_ERROR_LOG = error.log
DSL_EXECUTE_LOG = execute.log
END
number=0
for folder in proofs/*; do
  rm -f error.log execute.log result.json
  "$vetro" -c config.ini -j result.json "$folder/gap.txt" "$folder/script.txt" >/dev/null 2>&1 </dev/null
  number=$((number + 1))
  mkdir -p "expected/$number"
  for file in error.log execute.log result.json; do
    [ ! -e "$file" ] || mv "$file" "expected/$number"
  done
done

# same LOGS: the folders there begin with the numbers of the proofs.
same() {
  [ "$(find "$1" -mindepth 1 -maxdepth 1 | wc -l)" -eq "$number" ] || { echo "$1: other proofs" && bad=1; }
  for folder in "$1"/*; do
    name=${folder##*/}
    diff -r "expected/${name%%-*}" "$folder" || bad=1
  done
}
"$check" --library library.txt --logs alone -j1 proofs >one
"$check" --library library.txt --logs together -j4 --explain proofs >four
same alone
same together
[ "$(grep -c '^verified' one)" -gt 20 ] && [ "$(grep -c '^failed' one)" -gt 10 ] || { tail -n 1 one && bad=1; }
# A process has other proofs behind it when the order is another one: these stand in the order of their names again.
for folder in proofs/*; do echo "{\"id\": \"${folder#*/}\", \"gap\": \"$folder/gap.txt\", \"script\": \"$folder/script.txt\"}"; done |
  sort -r >manifest.jsonl
"$check" --library library.txt --logs backwards -j1 manifest.jsonl >/dev/null
for folder in backwards/*; do
  name=${folder##*/}
  forwards=$((number + 1 - ${name%%-*}))
  diff -r "expected/$forwards" "$folder" || bad=1
done
exit $bad

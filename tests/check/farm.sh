#!/bin/sh
# The recipes for several machines report what one run reports: farm.sh VETRO_CHECK PROJECT_FOLDER SCRATCH_FOLDER.
#
# Slurm is a stand-in here (farm_slurm.sh takes the real one): an sbatch that, as the real one does, copies the script
# away, runs it in the folder of the call once for each task of an array, and keeps dependencies in order, as each job ends
# before the next is taken. GNU parallel is the real one where it is installed, with a stand-in for ssh that runs commands
# here and loses one host.
set -u

VETRO_CHECK=$1
export VETRO_CHECK
farm=$2/examples/farm
scratch=$3
bad=0

complain() {
  echo "$*"
  bad=1
}

rm -rf "$scratch"
mkdir -p "$scratch/bin" "$scratch/the proofs"
PATH=$scratch/bin:$PATH
cd "$scratch/the proofs" || exit 1
printf 'Thm 1. (a)\nforall (x), x = x\n' >library.txt
for i in 1 2 3 4 5 6 7; do
  goal="a + $i > b"
  [ $i -ne 3 ] || goal="a > b + 3"
  printf '{"id": "p%s", "gap_text": "ASSUM:\\n1. a > b\\nGOAL:\\n%s\\n", "script_text": "autosolve all_hypothesis\\n"}\n' $i "$goal"
done >"all of them.jsonl"
"$VETRO_CHECK" --library library.txt "all of them.jsonl" >one_run
one_status=$?
[ "$one_status" = 1 ] || complain "one run ends with status $one_status"

# ---- Slurm.

cat >"$scratch/bin/sbatch" <<'END'
#!/bin/sh
output=/dev/null
first=0
last=0
cpus=1
while :; do
  case $1 in
    --output=*) output=${1#*=} ;;
    --array=*) first=${1#*=1-} last=$first first=1 ;;
    --cpus-per-task=*) cpus=${1#*=} ;;
    --dependency=afterany:*) [ -e "$SPOOL/job${1##*:}" ] || exit 1 ;;
    --parsable | --job-name=* | --requeue | --open-mode=*) ;;
    -*) echo "sbatch: unknown option $1" >&2; exit 1 ;;
    *) break ;;
  esac
  shift
done
number=$(($(find "$SPOOL" -name 'job*' | wc -l) + 1))
cp "$1" "$SPOOL/job$number"
shift
for task in $(seq "$first" "$last"); do
  file=$(echo "$output" | sed "s/%a/$task/")
  SLURM_ARRAY_TASK_ID=$task SLURM_CPUS_PER_TASK=$cpus "$SPOOL/job$number" "$@" >"$file" 2>&1
  echo $? >"$SPOOL/status$number.$task"
done
echo "$number;cluster"
END
chmod +x "$scratch/bin/sbatch"
SPOOL=$scratch/spool
export SPOOL
mkdir "$SPOOL"

CPUS=2 "$farm/on_slurm" 3 "all of them.jsonl" parts --library library.txt >/dev/null || complain "on_slurm failed"
diff one_run parts/report || complain "on_slurm reports something else"
[ "$(cat "$SPOOL"/status1.*)" = "0
0
0" ] || complain "a part whose proofs fail counts as not complete"
[ "$(cat "$SPOOL/status2.0")" = 1 ] || complain "the report has another status"

# A task that was cut off in the middle of a line, and one that never began: named, and mended by a second call.
cut=$(head -c -30 parts/1.events)
printf '%s' "$cut" >parts/1.events
"$farm/report" 3 parts >report 2>&1
[ $? = 3 ] && grep -q 'parts/1.events ends before its summary' report || complain "a part that was cut off is not noticed"
rm parts/2.events
"$farm/report" 3 parts >report 2>&1
[ $? = 3 ] && grep -q 'parts/2.events: No such file' report || complain "a missing part is not noticed"
"$farm/on_slurm" 3 "all of them.jsonl" parts --library library.txt >/dev/null
diff one_run parts/report || complain "a second call does not go on"
"$farm/on_slurm" 3 "all of them.jsonl" parts --library library.txt --strict >/dev/null
[ "$(cat "$SPOOL"/status5.*)" = "1
1
1" ] && grep -q 'parts/3.events ends before its summary' parts/report || complain "the events of other options pass"

# Two processes never write one part.
flock parts/1.lock "$farm/check_part" 1 3 "all of them.jsonl" parts 2>busy && complain "a part is written twice"
grep -q 'another process works on part 1' busy || complain "a part that is being checked is not noticed"

# ---- GNU parallel.

if ! command -v parallel >/dev/null; then
  echo "GNU parallel is not installed; on_hosts is not tried"
  exit $bad
fi
cat >"$scratch/bin/ssh" <<'END'
#!/bin/sh
while [ "${1#-}" != "$1" ]; do shift; done
host=$1
shift
[ "$1" != -- ] || shift
echo "$host" >>"$SPOOL/hosts"
[ "$host" != lost ] || exit 255
# As a host does; GNU parallel asks for it there.
export SHELL=/bin/sh
exec sh -c "$*"
END
chmod +x "$scratch/bin/ssh"
printf 'here\nlost\nthere\n' >hosts
PARALLEL_HOME=$scratch "$farm/on_hosts" hosts 5 "all of them.jsonl" hosts_parts --library library.txt >report
[ $? = 1 ] || complain "on_hosts ends with another status"
diff one_run report || complain "on_hosts reports something else"
[ "$(sort -u "$SPOOL/hosts")" = "here
lost
there" ] || complain "not all hosts were asked"
exit $bad

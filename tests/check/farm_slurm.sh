#!/bin/sh
# The recipe for Slurm under a real Slurm of one node: farm_slurm.sh VETRO_CHECK PROJECT_FOLDER SCRATCH_FOLDER.
#
# The daemons run below the scratch folder, with ports and a key of their own, and end with the test. Exit status 77 where
# Slurm is not installed or does not start.
set -u

VETRO_CHECK=$1
export VETRO_CHECK
project=$2
scratch=$3
PATH=$PATH:/usr/sbin:/sbin
for tool in munged slurmctld slurmd sbatch; do
  command -v $tool >/dev/null || { echo "skipped: $tool is not installed"; exit 77; }
done

# Sockets have short names.
run=$(mktemp -d)
daemons=""
end() {
  status=$?
  # shellcheck disable=SC2086 # one word for each process
  [ -z "$daemons" ] || kill $daemons 2>/dev/null
  wait
  rm -rf "$run"
  exit $status
}
trap end EXIT
trap 'exit 1' INT TERM

# start NAME COMMAND ...: a daemon in the foreground of a process of its own.
start() {
  name=$1
  shift
  "$@" >"$scratch/$name.log" 2>&1 &
  daemons="$! $daemons"
}

# soon SECONDS COMMAND ...: whether the command succeeds within that time.
soon() {
  left=$1
  shift
  until "$@" >/dev/null 2>&1; do
    left=$((left - 1))
    [ $left -gt 0 ] || return 1
    sleep 1
  done
}

rm -rf "$scratch"
mkdir -p "$scratch/state" "$scratch/spool"
cd "$scratch" || exit 1
chmod 755 "$run"
head -c 128 /dev/urandom >"$run/key"
chmod 600 "$run/key"
port=$((20000 + $$ % 10000 * 2))
host=$(hostname -s)
cat >slurm.conf <<END
ClusterName=test
SlurmctldHost=$host
SlurmctldPort=$port
SlurmdPort=$((port + 1))
SlurmUser=$(id -un)
SlurmdUser=$(id -un)
AuthType=auth/munge
AuthInfo=socket=$run/socket
StateSaveLocation=$scratch/state
SlurmdSpoolDir=$scratch/spool
SlurmctldPidFile=$run/slurmctld.pid
SlurmdPidFile=$run/slurmd.pid
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
SelectType=select/cons_tres
SelectTypeParameters=CR_Core
JobAcctGatherType=jobacct_gather/none
AccountingStorageType=accounting_storage/none
MpiDefault=none
NodeName=$host CPUs=1 State=UNKNOWN
PartitionName=all Nodes=$host Default=YES State=UP
END
export SLURM_CONF="$scratch/slurm.conf"

start munged munged --foreground --force --key-file="$run/key" --socket="$run/socket" --pid-file="$run/munged.pid" \
  --log-file="$scratch/munged.log" --seed-file="$run/seed"
if soon 20 test -S "$run/socket"; then
  start slurmctld slurmctld -D
  soon 20 scontrol ping && start slurmd slurmd -D
fi
if ! soon 60 sh -c 'sinfo --noheader | grep -qw idle'; then
  echo "skipped: Slurm does not start here"
  tail -n 3 ./*.log
  exit 77
fi

for i in 1 2 3 4 5; do
  printf '{"id": "p%s", "gap_text": "GOAL:\\n%s + a > a\\n", "script_text": "autosolve\\n"}\n' $i $((i - 2))
done >proofs.jsonl
"$VETRO_CHECK" proofs.jsonl >one_run
[ $? = 1 ] || { echo "one run has another status"; exit 1; }
CPUS=1 "$project/examples/farm/on_slurm" 3 proofs.jsonl parts >submitted || exit 1
finished() { ! squeue --noheader | grep -q .; }
soon 180 finished || { squeue; exit 1; }
diff one_run parts/report || exit 1
scontrol show job "$(cat submitted)" | grep -q 'ExitCode=1:0' || { echo "the report has another status"; exit 1; }

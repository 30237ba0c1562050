#!/bin/sh
# Runs one shipped example as a reader would and compares its outcome and execute log with the recorded ones:
# run_example.sh VETRO PROJECT_FOLDER NAME SCRATCH_FOLDER. UPDATE=1 records them anew.
set -u

vetro=$1
project=$2
name=$3
scratch=$4
expected=$project/tests/examples/$name

rm -rf "$scratch"
mkdir -p "$scratch/build/logs"
cp -R "$project/examples" "$scratch"
cd "$scratch" || exit 1
"$vetro" -c "examples/$name/config.ini" -j build/logs/result.json "examples/$name/gap.txt" "examples/$name/script.txt" \
  >stdout 2>stderr
status=$?
{
  echo "status $status"
  grep '^dsl ' stdout
  cat stderr build/logs/error.log build/logs/execute.log
} >record
[ -z "${UPDATE:-}" ] || cp record "$expected.record"
diff -u "$expected.record" record

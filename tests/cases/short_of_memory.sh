#!/bin/sh
# Runs a small proof again and again, each time with another allocation that fails, until the run needs no more of them:
# short_of_memory.sh VETRO_WITH_FAILING_ALLOCATION CASE_FOLDER SCRATCH_FOLDER. Whatever fails, the run succeeds or ends
# with status 1 and a message, and leaves a whole result document or none.
set -u

vetro=$1
case_folder=$2
scratch=$3
default_folder=$(dirname "$0")/default

rm -rf "$scratch"
mkdir -p "$scratch"
cp "$default_folder"/* "$scratch"
cp "$case_folder"/*.txt "$scratch"
cd "$scratch" || exit 1

bad=0
number=0
export FAILING_ALLOCATION ALLOCATIONS_LEFT_OVER=left_over
while [ ! -e left_over ]; do
  number=$((number + 1))
  FAILING_ALLOCATION=$number
  rm -f result.json
  "$vetro" -c config.ini -j result.json gap.txt script.txt >stdout 2>stderr </dev/null
  status=$?
  case $status in
    0) [ -e result.json ] || { echo "allocation $number: no document"; bad=1; } ;;
    1) [ -s stderr ] || [ -s error.log ] || { echo "allocation $number: no message"; bad=1; } ;;
    *) echo "allocation $number: status $status"; cat stderr; bad=1 ;;
  esac
  if [ -e result.json.part ] || { [ -e result.json ] && [ "$(tail -n 1 result.json)" != "}" ]; }; then
    echo "allocation $number: half a document"
    bad=1
  fi
done
echo "$number runs"
[ "$number" -gt 100 ] || bad=1
exit "$bad"

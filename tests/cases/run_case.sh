#!/bin/sh
# Runs one case and compares what it leaves behind: run_case.sh VETRO CASE_FOLDER SCRATCH_FOLDER.
#
# The files of the case (gap.txt, script.txt, library.txt, config.ini, ...) are copied into the scratch folder, over those
# of default/, and the program runs there as ./vetro, so that all paths in messages are relative:
#     ./vetro -c config.ini -j result.json gap.txt script.txt
# A file `command` is a shell script that runs instead. Each file expected_NAME is compared with the file NAME that the
# run left: status, stdout, stderr, execute.log, error.log, result.json or any other.
#
# A run must not depend on the result document, so that the usual command is repeated without -j.
#
# A new case: write its inputs, then run this with UPDATE=1. That writes the expected files that are there anew, or all
# that the run left when there are none. Read them before you commit them.
set -u

vetro=$1
case_folder=$2
scratch=$3
default_folder=$(dirname "$0")/default

prepare() {
  rm -rf "$scratch"
  mkdir -p "$scratch"
  cp "$default_folder"/* "$scratch"
  for input in "$case_folder"/*; do
    case ${input##*/} in
      expected_*) ;;
      *) cp -R "$input" "$scratch" ;;
    esac
  done
  ln -s "$vetro" "$scratch/vetro"
  [ ! -e "$(dirname "$vetro")/vetro-check" ] || ln -s "$(dirname "$vetro")/vetro-check" "$scratch/vetro-check"
}

# run FOLDER COMMAND ...: leaves stdout, stderr and status in the folder.
run() (
  cd "$1" || exit 1
  shift
  "$@" >stdout 2>stderr </dev/null
  echo $? >status
)

update() {
  set -- "$case_folder"/expected_*
  if [ ! -e "$1" ]; then
    for name in status stdout stderr execute.log error.log result.json; do
      [ ! -e "$scratch/$name" ] || cp "$scratch/$name" "$case_folder/expected_$name"
    done
    return
  fi
  for expected in "$@"; do
    cp "$scratch/${expected##*/expected_}" "$expected"
  done
}

compare() {
  for expected in "$case_folder"/expected_*; do
    diff -u "$expected" "$scratch/${expected##*/expected_}" || different=1
  done
}

replay_without_document() {
  mkdir "$scratch/first"
  for name in status stdout execute.log error.log; do
    [ ! -e "$scratch/$name" ] || mv "$scratch/$name" "$scratch/first"
  done
  run "$scratch" ./vetro -c config.ini gap.txt script.txt
  for name in status stdout execute.log error.log; do
    [ ! -e "$scratch/first/$name" ] || diff -u "$scratch/first/$name" "$scratch/$name" || different=1
  done
}

different=0
prepare
if [ -e "$case_folder/command" ]; then
  run "$scratch" sh command
else
  run "$scratch" ./vetro -c config.ini -j result.json gap.txt script.txt
fi
[ -z "${UPDATE:-}" ] || update
compare
[ -e "$case_folder/command" ] || replay_without_document
exit "$different"

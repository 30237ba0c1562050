#!/bin/sh
# Runs the examples of one document and compares what they show: check_examples.sh VETRO SOURCE_FOLDER SCRATCH DOCUMENT.
#
# Each heading of the first two levels starts a fresh folder that holds the default files of tests/cases. In it, in the order of
# the text, blocks between ``` fences count by the word behind the opening fence:
#     gap, script, library, config   written to gap.txt, script.txt, library.txt, config.ini
#     repair                         written to repair.txt
#     trace                          vetro runs; the block shows the steps of its execute log
#     error, stderr                  vetro runs; the block shows its error log, its standard error
#     console                        lines behind "$ " are commands, the lines between them show their output
# Other blocks are only read by people. A shown line "..." stands for any number of lines; blanks at the end of a line do
# not count.
set -u

vetro=$1
source_folder=$2
scratch=$3
document=$4

here=$(dirname "$0")
blocks=$scratch/blocks
folder=$scratch/before_first_heading
different=0

rm -rf "$scratch"
mkdir -p "$blocks" "$scratch/bin"
ln -s "$vetro" "$scratch/bin/vetro"
[ ! -e "$(dirname "$vetro")/vetro-check" ] || ln -s "$(dirname "$vetro")/vetro-check" "$scratch/bin/vetro-check"
PATH=$scratch/bin:$PATH

start_folder() {
  folder=$scratch/$1
  mkdir -p "$folder/build/release/src" "$folder/build/logs"
  cp "$source_folder"/tests/cases/default/* "$folder"
  ln -s "$vetro" "$folder/build/release/src/vetro"
  [ ! -e "$scratch/bin/vetro-check" ] || ln -s "$scratch/bin/vetro-check" "$folder/build/release/src/vetro-check"
  ln -s "$source_folder/examples" "$folder/examples"
}

# run COMMAND: standard output to `out`, standard error to `err`.
run() {
  (cd "$folder" && sh -c "$1" >out 2>err </dev/null)
}

# compare SHOWN ACTUAL WHAT
compare() {
  awk -f "$here/matches.awk" "$1" "$2" && return
  echo "$document: $3 differs (- shown, + real):"
  diff -u "$1" "$2"
  different=1
}

run_vetro() {
  run "vetro -c config.ini gap.txt script.txt"
}

run_console() {
  awk -v base="$1" '
    /^\$ / { number++; print substr($0, 3) > (base "." number ".command"); printf "" > (base "." number ".shown"); next }
    { print > (base "." number ".shown") }' "$1"
  number=1
  while [ -e "$1.$number.command" ]; do
    run "exec 2>&1; $(cat "$1.$number.command")"
    compare "$1.$number.shown" "$folder/out" "the output of $(cat "$1.$number.command")"
    number=$((number + 1))
  done
}

awk -v folder="$blocks" -f "$here/blocks.awk" "$document"
start_folder start
examples=0
for block in "$blocks"/*; do
  case $block in
    *.heading) start_folder "$(basename "$block" .heading)" ;;
    *.gap | *.script | *.library | *.repair) cp "$block" "$folder/${block##*.}.txt" ;;
    *.config) cp "$block" "$folder/config.ini" ;;
    *.trace)
      run_vetro
      sed '1,/^$/d' "$folder/execute.log" >"$folder/steps"
      compare "$block" "$folder/steps" "the execute log of $(basename "$block")"
      examples=$((examples + 1))
      ;;
    *.error)
      run_vetro
      compare "$block" "$folder/error.log" "the error log of $(basename "$block")"
      examples=$((examples + 1))
      ;;
    *.stderr)
      run_vetro
      compare "$block" "$folder/err" "the standard error of $(basename "$block")"
      examples=$((examples + 1))
      ;;
    *.console)
      run_console "$block"
      examples=$((examples + 1))
      ;;
  esac
done
echo "$document: $examples examples"
exit "$different"

#!/bin/sh
# Compares the man pages and the shell completion with what they are about: check_man.sh VETRO PROJECT_FOLDER.
#
# The options of both programs and the exit statuses of vetro-check are those of --help, the instructions and keys those of
# the other documents. The pages are read by mandoc and man, where these are installed.
set -u

vetro=$1
check=$(dirname "$vetro")/vetro-check
pages=$2/docs/man
docs=$2/docs
bad=0

# same WHAT ONE OTHER: two lists of words, in any order, must be the same and not empty.
same() {
  one=$(printf '%s\n' "$2" | sort -u)
  other=$(printf '%s\n' "$3" | sort -u)
  if [ -z "$one" ] || [ "$one" != "$other" ]; then
    echo "$1 differ:"
    echo "$one" >one.list
    echo "$other" >other.list
    diff one.list other.list
    bad=1
  fi
}

help_options() { "$@" --help | grep -E '^ +-' | grep -oE '(^ +|, ?)--?[a-z][a-z-]*' | tr -d ' ,'; }
page_options() { grep '^\.It Fl' "$1" | grep -oE 'Fl -?[a-z][a-z-]*' | sed 's/^Fl /-/'; }
completed_options() {
  bash -c '
    . "$1"
    COMP_WORDS=("$2" -) COMP_CWORD=1
    '"$3"'
    printf "%s\n" "${COMPREPLY[@]}"
    # Behind an option that takes a file the files are offered.
    cd "$4"
    COMP_WORDS=("$2" --config config) COMP_CWORD=2
    '"$3"'
    [ "${COMPREPLY[*]}" = configuration.md ] || echo "no files: ${COMPREPLY[*]}"
  ' bash "$1" "$2" "$3" "$docs"
}

same "options of vetro and its page" "$(help_options "$vetro")" "$(page_options "$pages/vetro.1")"
same "options of vetro-check and its page" "$(help_options "$check")" "$(page_options "$pages/vetro-check.1")"
if command -v bash >/dev/null; then
  folder=$2/scripts/completion
  same "options of vetro and its completion" "$(help_options "$vetro")" "$(completed_options "$folder/vetro" vetro _vetro)"
  same "options of vetro-check and its completion" "$(help_options "$check")" \
    "$(completed_options "$folder/vetro-check" vetro-check _vetro_check)"
else
  echo "bash is not installed; completion is not tried"
fi

page_statuses() { sed -n '/^\.Sh EXIT STATUS/,/^\.Sh EXAMPLES/s/^\.It \([0-9]\)$/\1/p' "$1"; }
same "exit statuses of vetro-check and its page" \
  "$("$check" --help | sed -n '/^Exit status/,$p' | grep -oE '(:|,) *[0-9]' | tr -dc '0-9\n')" \
  "$(page_statuses "$pages/vetro-check.1")"
same "outcomes of vetro-check" "$(sed -nE 's/^\| ([a-z ]+) \| `[a-z-]+` \|.*\| ([0-5]) \|$/\1 \2/p' "$docs/check.md")" \
  "$(sed -nE 's/^\.It Em ([a-z ]+) Pq ([0-5])$/\1 \2/p' "$pages/vetro-check.1")"
same "instructions" "$(grep -oE '^\| \[`[a-z_]+`\]\(#' "$docs/script_language.md" | tr -dc 'a-z_\n')" \
  "$(sed -n 's/^\.It Ic \([a-z_]*\).*/\1/p' "$pages/vetro-script.5")"
same "keys of configurations" "$(sed -nE 's/^\| `[A-Z_]+` \| `([A-Z_]+)`.*/\1/p' "$docs/configuration.md")" \
  "$(sed -nE 's/^\.It Va ([A-Z_]+).*/\1/p' "$pages/vetro-config.5")"
same "keys of result documents" "$(grep -oE '^\| `[a-z_]+`(, `[a-z_]+`)* \|' "$docs/result_document.md" | grep -oE '[a-z_]+')" \
  "$(sed -n '/^\.It Va/{s/^.It//;s/Va //g;p;}' "$pages/vetro-result.5" | grep -oE '[a-z]+(_[a-z]+)*')"

for page in "$pages"/*.[15]; do
  said=""
  if command -v mandoc >/dev/null; then
    said=$(mandoc -Tlint -W warning "$page" 2>&1)
  fi
  if command -v man >/dev/null && command -v groff >/dev/null; then
    said=$said$(LC_ALL=C.UTF-8 MANROFFSEQ='' man --warnings -E UTF-8 -l "$page" 2>&1 >/dev/null)
  fi
  if [ -n "$said" ]; then
    echo "$page: $said"
    bad=1
  fi
done
exit $bad

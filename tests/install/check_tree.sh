#!/bin/sh
# An installed tree does what the man pages say, from any folder: check_tree.sh PREFIX PROJECT_FOLDER SCRATCH_FOLDER.
set -u

prefix=$1
project=$2
scratch=$3
bad=0

# same WHAT WANTED FOUND
same() {
  if [ "$2" != "$3" ]; then
    printf '%s: wanted\n%s\nfound\n%s\n' "$1" "$2" "$3"
    bad=1
  fi
}

names() { (cd "$1" && find . -type f | sed 's/\.gz$//' | LC_ALL=C sort); }

rm -rf "$scratch"
mkdir -p "$scratch"
cd "$scratch" || exit 1

# The example of vetro(1), taken from the page: the files behind "$ cat", then the command.
page=$prefix/share/man/man1/vetro.1
{ if [ -e "$page.gz" ]; then gzip -dc "$page.gz"; else cat "$page"; fi; } |
  sed -n '/^\.Bd -literal/,/^\.Ed/{/^\./d;p;}' | sed "s|/usr/share|$prefix/share|" |
  awk '/^\$ cat / { file = $3; next } /^\$ / { file = "command"; print substr($0, 3) > file; file = "shown"; next } { print > file }'
same "the example of vetro(1)" "$(cat shown)" "$(PATH=$prefix/bin:$PATH sh command)"

# The shipped library is the installed one, also where vetro-check is called by a link.
ln -s "$prefix/bin/vetro-check" linked
same "the example with vetro-check" "verified       gap.txt" "$(./linked gap.txt script.txt)"
same "the library" "$(cd "$prefix" && pwd -P)/share/vetro/library/analysis.txt" \
  "$("$prefix/bin/vetro-check" --json gap.txt script.txt | sed -n 's/^{"event":"run".*"library":"\([^"]*\)".*/\1/p')"
cmp "$project/examples/library/analysis.txt" "$prefix/share/vetro/library/analysis.txt" || bad=1

same "the man pages" "$(cd "$project/docs/man" && ls)" "$(names "$prefix/share/man" | sed 's|.*/||' | LC_ALL=C sort)"
if command -v bash >/dev/null; then
  same "the completion" "--quiet" "$(bash -c '. "$1" && COMP_WORDS=(x --q) COMP_CWORD=1 && _vetro_check && echo "${COMPREPLY[*]}"' \
    bash "$prefix/share/bash-completion/completions/vetro-check")"
fi
# Sources are not installed; all other links hold.
same "broken links" "" "$(sh "$project/tests/docs/check_links.sh" "$prefix/share/doc/vetro/README.md" \
  "$prefix"/share/doc/vetro/docs/*.md | grep -v ': \.\./\(src\|tests\|bench\)')"
exit $bad

#!/bin/sh
# Each relative link of the documents leads to a file of the project, and one with "#" to a heading of it:
# check_links.sh DOCUMENT ...
set -u

broken=0

# The names that headings have in links, one a line: lower case, "-" for a blank, other signs dropped.
heading_names() {
  sed -n 's/^##* //p' "$1" | tr 'A-Z' 'a-z' | sed 's/[^a-z0-9 _-]//g; s/ /-/g'
}

for document in "$@"; do
  for link in $(grep -o '](\([^)]*\))' "$document" | sed 's/^](//; s/)$//'); do
    path=${link%%#*}
    target=$(dirname "$document")/$path
    [ -n "$path" ] || target=$document
    if [ ! -e "$target" ]; then
      echo "$document: $link leads to nothing"
      broken=1
    elif [ "$link" != "$path" ] && ! heading_names "$target" | grep -qxF -- "${link#*#}"; then
      echo "$document: $link leads to no heading"
      broken=1
    fi
  done
done
exit "$broken"

#!/bin/sh
# Writes the expected files of cases anew: update.sh VETRO [CASE ...]. Without a name, of all cases.
set -eu
vetro=$(realpath "$1")
shift
cd "$(dirname "$0")"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
[ $# -gt 0 ] || set -- */
for name in "$@"; do
  name=${name%/}
  [ "$name" = default ] || UPDATE=1 sh run_case.sh "$vetro" "$PWD/$name" "$scratch/$name" || echo "case $name differs"
done

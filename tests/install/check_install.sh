#!/bin/sh
# `cmake --install` below a prefix of its own: check_install.sh BUILD_FOLDER PROJECT_FOLDER SCRATCH_FOLDER.
set -u
rm -rf "$3"
mkdir -p "$3"
cmake --install "$1" --prefix "$3/prefix" >"$3/log" 2>&1 || { cat "$3/log"; exit 1; }
# A tree that was moved works, too.
mv "$3/prefix" "$3/moved"
sh "$(dirname "$0")/check_tree.sh" "$3/moved" "$2" "$3/run"

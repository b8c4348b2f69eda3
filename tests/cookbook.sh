#!/bin/sh
# cookbook.sh PROGRAM: whether the recipes in Python make what those in C++ do, by PROGRAM.
set -eu
program=$(readlink -f "$1")
root=$(readlink -f "$(dirname "$0")/..")
. "$root/tests/scratch.sh"
mkdir cpp python
"$program" cpp >/dev/null
"$root/script/python" -B "$root/python/cookbook.py" python >/dev/null
[ -e cpp/stairs.json ]
diff -r cpp python

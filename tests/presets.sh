#!/bin/sh
# presets.sh [PRESET ...]: whether these presets, all unless some are named, configure and compile
# with the user's CXXFLAGS beside the warnings that the presets ask for.
set -eu
root=$(readlink -f "$(dirname "$0")/..")
. "$root/tests/scratch.sh"
list() { cmake -S "$root" --list-presets | sed -n 's/^ *\("[^"]*"\).*/\1/p' | tr '\n' ' '; }
[ $# -gt 0 ] || eval "set -- $(list)"
for preset; do
    CXXFLAGS=-DKEPT cmake -S "$root" --preset "$preset" -B "$preset" >/dev/null
    all=$(grep -c '"command"' "$preset/compile_commands.json")
    kept=$(grep -c '"command".* -DKEPT .* -Wall ' "$preset/compile_commands.json")
    echo "$preset: $kept of $all commands keep CXXFLAGS"
    [ "$kept" -eq "$all" ]
done

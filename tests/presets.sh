#!/bin/sh
# presets.sh [PRESET ...]: whether these presets, all unless some are named, configure and compile
# with the user's CXXFLAGS beside the warnings that the presets ask for.
set -eu
build=$PWD/presets
cd "$(dirname "$0")/.."
[ $# -gt 0 ] || eval "set -- $(cmake --list-presets | sed -n 's/^ *\("[^"]*"\).*/\1/p' | tr '\n' ' ')"
for preset; do
    rm -rf "$build"
    CXXFLAGS=-DKEPT cmake --preset "$preset" -B "$build" >/dev/null
    all=$(grep -c '"command"' "$build/compile_commands.json")
    kept=$(grep -c '"command".* -DKEPT .* -Wall ' "$build/compile_commands.json")
    echo "$preset: $kept of $all commands keep CXXFLAGS"
    [ "$kept" -eq "$all" ]
done

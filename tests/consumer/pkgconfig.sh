#!/bin/sh
# pkgconfig.sh STAGE [--static] FOLDER COMPILER [OPTION ...]: builds the consumer with the library
# that lies in the stage, found by pkg-config alone, and runs it.
set -eu
PKG_CONFIG_PATH=$(dirname "$(find "$1" -name animationmodel.pc)")
export PKG_CONFIG_PATH
shift
static=
if [ "$1" = --static ]; then
    static=--static
    shift
fi
folder=$1
shift
mkdir -p "$folder"
set -- "$@" "$(dirname "$0")/main.cpp"
eval "set -- \"\$@\" $(pkg-config $static --cflags --libs animationmodel)"
"$@" -o "$folder/consumer"
LD_LIBRARY_PATH=$(dirname "$PKG_CONFIG_PATH") "$folder/consumer"

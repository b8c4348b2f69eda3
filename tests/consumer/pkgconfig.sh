#!/bin/sh
# pkgconfig.sh COMPILER STAGE FOLDER [pkg-config options]: builds the consumer by pkg-config alone.
set -eu
compiler=$1 stage=$2 folder=$3
shift 3
PKG_CONFIG_PATH=$(dirname "$(find "$stage" -name animationmodel.pc)")
export PKG_CONFIG_PATH
mkdir -p "$folder"
eval "set -- $(pkg-config "$@" --cflags --libs animationmodel)" # it escapes blanks in paths
"$compiler" -std=c++20 "$(dirname "$0")/main.cpp" -o "$folder/consumer" "$@"
LD_LIBRARY_PATH=$(dirname "$PKG_CONFIG_PATH") "$folder/consumer"

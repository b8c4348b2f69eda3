#!/bin/sh
# pkgconfig.sh COMPILER STAGE FOLDER [pkg-config options]: builds the consumer by pkg-config alone.
set -eu
compiler=$1 stage=$2 folder=$3
shift 3
PKG_CONFIG_PATH=$(dirname "$(find "$stage" -name animationmodel.pc)")
export PKG_CONFIG_PATH
mkdir -p "$folder"
# shellcheck disable=SC2046 # words on purpose
"$compiler" -std=c++20 "$(dirname "$0")/main.cpp" -o "$folder/consumer" \
    $(pkg-config "$@" --cflags --libs animationmodel)
LD_LIBRARY_PATH=$(pkg-config --variable=libdir animationmodel) "$folder/consumer"

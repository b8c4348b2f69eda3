#!/bin/sh
# lightshow-manual.sh PROGRAM: whether the manual has the options that the program has, each with
# its words.
set -eu
lightshow=$(readlink -f "$1")
manual=$(readlink -f "$(dirname "$0")/../lights/lightshow.1")
. "$(dirname "$0")/scratch.sh"

"$lightshow" --help | sed -n 's/^  \(-.*\)/\1/p' | sed 's/   *.*//' | sort >helped
sed -n 's/^\.B \(\\-.*\)/\1/p' "$manual" | sed 's/\\-/-/g; s/, /,/' | sort >written
grep -qx -- '--keep FROM TO' helped
diff helped written

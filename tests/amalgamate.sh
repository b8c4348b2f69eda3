#!/bin/sh
# amalgamate.sh COMPILER [OPTION ...]: whether one header and one source are all that the quickstart
# needs, in a folder where nothing else is.
set -eu
root=$(readlink -f "$(dirname "$0")/..")
. "$root/tests/scratch.sh"
"$root/script/amalgamate" .
sed 's|<animationmodel/Animation.h>|"animationmodel.h"|' "$root/examples/quickstart.cpp" >lamp.cpp
"$@" -c animationmodel.cpp
"$@" lamp.cpp animationmodel.o -o lamp
./lamp | grep -q '^95 frames, 3.8 s$'

# The other headers are in there, too.
cat >ring.cpp <<'END'
#include "animationmodel.h"
int main() {
    Kiv::Animation ring = Kiv::Rotation(1, 0, 2, 2, 2);
    Kiv::change_frame_rate(ring, 50);
    return Kiv::sample(ring.layers, 2, 1).front() == 0.5F ? 0 : 1;
}
END
"$@" ring.cpp animationmodel.o -o ring
./ring

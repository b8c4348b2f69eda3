#!/bin/sh
# unused.sh COMPILER [OPTION ...]: whether the compiler warns of each call here whose result is
# dropped, though a program needs it.
set -eu
calls='it.layer("lamp");
it.hasLayer("lamp");
it.empty();
it.durationInFrames();
Animation::durationInFramesOf(it.layers);
Animation::durationInFramesOf(KeyVector());
Animation::durationInFramesOf({key});
it.outroStartFrame();
it.durationInSeconds();
it.simulatedDurationInSeconds(25);
it.loop(5, false, false);
it.splitAt(3, false, false);
it.splitAt(std::set<unsigned int>(), false, false);
it.splitAt({3, 4}, false, false);
it.splitEach(3, false, false);
key.splitAt(3);
key.splitEach(3);
key.command.args.empty();
key.command.args.size();
make_vector(1);
make_vector(1, 2);
shortest_text(1);'

warned=$(printf '%s\n' '#include <animationmodel/Animation.h>' 'using namespace Kiv;' \
    'void drop_results(const Animation& it, const AnimationKey& key) {' '#line 1' "$calls" '}' |
    "$@" -x c++ -fsyntax-only -Wunused-result -I "$(dirname "$0")/../../include" - 2>&1 |
    sed -n 's/^<stdin>:\([0-9]*\):.*warning.*/\1/p' | sort -nu)
expected=$(echo "$calls" | sed -n =)
[ "$warned" = "$expected" ] || {
    printf 'warnings in lines\n%s\nand not in all lines of\n%s\n' "$warned" "$calls" >&2
    exit 1
}

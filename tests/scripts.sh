#!/bin/sh
# scripts.sh: what all scripts rely on: script/quietly, and folders that are gone in the end.
set -eu
root=$(readlink -f "$(dirname "$0")/..")
. "$root/tests/scratch.sh"
fail() {
    echo "scripts: $1" >&2
    exit 1
}
mkdir script
cp "$root/script/alone" "$root/script/quietly" script

# What a command says is shown only if it fails.
[ -z "$(script/quietly says echo fine 2>&1)" ] || fail 'shows what a command says that succeeds'
got=0
text=$(script/quietly says sh -c 'echo out; echo err >&2; exit 3' 2>&1) || got=$?
[ "$got $text" = "3 out
err" ] || fail "status $got, \"$text\" of a command that fails"

# Commands of one name wait for one another, but not for one that was killed.
alone() { script/quietly busy sh -c 'mkdir once && sleep 0.3 && rmdir once' 2>/dev/null; }
alone &
alone && wait $! || fail 'two commands of one name run at once'
# shellcheck disable=SC2016 # $$ is that of the inner sh
script/quietly busy sh -c 'echo $$ >started; mv started pid; exec sleep 60' &
until [ -e pid ]; do sleep 0.01; done
kill -KILL $! "$(cat pid)"
timeout 20 script/quietly busy true || fail 'a command that was killed is waited for'

# A build folder stays where it was made, by whatever way one comes there; others go.
made_as() { # the folder that it names, then where it is
    mkdir -p "$2"
    echo "CMAKE_CACHEFILE_DIR:INTERNAL=$1" >"$2/CMakeCache.txt"
    script/quietly "${2#build/}" test -d "$2" 2>/dev/null
}
ln -s . link
made_as "$folder/build/here" build/here || fail 'removes a build folder'
made_as "$folder/link/build/linked" build/linked || fail 'removes the build folder of a link'
made_as "$folder/build/here" build/copied && fail 'keeps a copied build folder'
made_as "$folder/gone/build/moved" build/moved && fail 'keeps a moved build folder'

# A signal that ends a script removes its folder as well.
for signal in HUP INT TERM; do
    # shellcheck disable=SC2016 # the inner sh expands them
    made=$(sh -c '. "$0"; pwd; kill -s "$1" $$' "$root/tests/scratch.sh" $signal) || true
    [ -n "$made" ] && [ ! -e "$made" ] || fail "$signal leaves $made behind"
done

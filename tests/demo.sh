#!/bin/sh
# demo.sh PROGRAM: how the demo takes its arguments, and what it says when it cannot do as told.
set -eu
demo=$(readlink -f "$1")
. "$(dirname "$0")/scratch.sh"
expect() { # status, what is said first on stderr, arguments
    status=$1 said=$2
    shift 2
    got=0
    text=$("$demo" "$@" 2>&1 >/dev/null) || got=$?
    [ "$got" = "$status" ] && case $text in "$said"*) return ;; esac
    echo "demo $*: status $got, \"$text\"; expected $status, \"$said\"" >&2
    exit 1
}
expect 0 '' -h
expect 0 '' 1.5 -1 2
expect 0 '' -.5 1e-3
expect 2 'demo: PULSE: cannot be "nan"' nan
expect 2 'demo: PULSE: cannot be "2abc"' 2abc
expect 2 'demo: PULSE: cannot be "0x10"' 0x10
expect 2 'demo: RISE: cannot be "0", but 1 or more frames' 1 0 0
expect 2 'demo: FALL: cannot be "-3"' 1 0 4 -3
expect 2 'demo: STEP: cannot be "4294967296"' 1 0 4 10 4294967296
expect 2 'demo: --svg: ' --svg
expect 2 'demo: --svg: needs a word' --svg --play
expect 2 'demo: --svg: needs a word' --svg ''
expect 1 'demo: cannot write ./none/a.svg: no such folder' --svg ./none/a.svg
expect 1 'demo: --play needs a terminal' --play

fail() {
    printf 'demo%.700s\n' "$1" >&2
    exit 1
}
! "$demo" >/dev/full 2>/dev/null || fail ' succeeds although it cannot write'

# PULSE REST RISE FALL STEP
text=$("$demo" 1.5 -1 8 7 2)
row='FaceLed1 | |-1>1.5 |1.5>-1||-1>1.5 |1.5>-1|-1         |'
case $text in
*"$row"*) ;;
*) fail " 1.5 -1 8 7 2 draws no
$row
but
$text" ;;
esac

# Where it is no terminal, steps and timelines are plain text of at most 80 columns.
text=$("$demo")
case $text in
*"$(printf '\033')"*) fail ' colours what is no terminal' ;;
'1. Rotation
74 frames'*'
FaceLed7 '*'0>1 is a Transition'*) ;;
*) fail " draws
$text" ;;
esac
[ "$(echo "$text" | wc -L)" -le 80 ] || fail " draws more than 80 columns
$text"

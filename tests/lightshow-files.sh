#!/bin/sh
# lightshow-files.sh PROGRAM: what lightshow does with the files that it reads and writes: none is
# lost, changed by half, or larger than was meant.
set -eu
lightshow=$(readlink -f "$1")
. "$(dirname "$0")/scratch.sh"
umask 022
printf 'OLA Show\n1 10,20\n100\n1 30\n50\n' >a
printf 'OLA Show\n1 9\n0\n2 7\n20\n2 8\n20\n' >b

fail() {
    echo "lightshow $1" >&2
    exit 1
}
within=''
refuses() { # status, what is said, then the arguments; nothing is changed, nothing left
    status=$1 said=$2
    shift 2
    before=$(ls -lA .)
    got=0
    text=$($within "$lightshow" "$@" 2>&1) || got=$?
    [ "$got" = "$status" ] && [ "$text" = "lightshow: $said" ] ||
        fail "$*: status $got, $text instead of $status, $said"
    [ "$(ls -lA .)" = "$before" ] || fail "$*: is refused and leaves $(ls -lA .) of $before"
}
same() { cmp "$1" "$2" || fail "writes another $2 $3"; }

# The standard input and output, and others' descriptors, from where they stand.
"$lightshow" - --write - <a >out
same a out 'through pipes'
for path in - /dev/stdout /dev/fd/1 /proc/self/fd/1; do
    echo before >out
    { "$lightshow" a --write "$path" && echo after; } >>out
    { echo before && cat a && echo after; } | same - out "to $path, which appends"
    "$lightshow" a --write "$path" | same a - "to the pipe at $path"
done
ln -s /dev/fd/3 third
"$lightshow" a --write third 3>out
same a out 'to a descriptor by a link'
{ "$lightshow" a --write /dev/fd/3 3>&1 >&4 | same a - 'to the pipe at /dev/fd/3'; } 4>&1
"$lightshow" a --write - --svg - >out
head -c "$(wc -c <a)" out | same a - 'before a picture'
rm third out

# What is no plain file stays what it is; a link is followed, to what is not yet there as well.
ln -s a link
"$lightshow" b --write link
[ -L link ] && cmp -s a b || fail 'replaces a link'
printf 'OLA Show\n1 10,20\n100\n1 30\n50\n' >a
mkdir folder
ln -s folder/new link2
ln -s link2 folder/../link3
"$lightshow" a --write link3
[ -L link3 ] && [ -L link2 ] && same a folder/new 'where a link leads'
mkfifo pipe
timeout 5 cat pipe >piped &
"$lightshow" b --write pipe
wait $! || true
[ -p pipe ] && same b piped 'into a pipe'
"$lightshow" a --write /dev/null

# A file keeps its mode, and a new one has that of all new ones.
for mode in 600 640 755; do
    echo old >out
    chmod $mode out
    "$lightshow" a --write out
    [ "$(stat -c %a out)" = $mode ] || fail "changes the mode $mode to $(stat -c %a out)"
done
rm out
(umask 027 && "$lightshow" a --write out)
[ "$(stat -c %a out)" = 640 ] || fail "gives a new file the mode $(stat -c %a out)"

# Names as long as there may be.
long=$(printf '%0250d.json' 0)
"$lightshow" a --write "$long"
"$lightshow" "$long" --write out
same a out "from a file with a long name"
rm "$long"

refuses 2 'none: no such file' none
refuses 2 'none: no such file' a --append none
refuses 2 'folder: is a folder' folder
refuses 1 'cannot write none/b: no such folder' a --write none/b
refuses 1 'cannot write folder: is a folder' a --write folder
refuses 1 'cannot write a/b: Not a directory' b --write a/b
full_disk() { (trap '' XFSZ && ulimit -f 0 && exec "$@"); }
echo old >out
within=full_disk refuses 1 'cannot write out: File too large' a --write out
within=full_disk refuses 1 'cannot write p1: File too large' a --split 50 p
small_files() { (ulimit -f 1 && exec "$@"); }
"$lightshow" --rotation 255 0 90 90 1 --write rotation
within=small_files refuses 1 'cannot write p2: File too large' a --append rotation --split 150 p
refuses 1 'cannot write /dev/full: No space left on device' a --write /dev/full
closed() { "$@" >&-; }
within=closed refuses 1 'cannot write the standard output: Bad file descriptor' a --write -
for words in --help --version 'a --write -' a; do
    got=0
    # shellcheck disable=SC2086 # words on purpose
    text=$("$lightshow" $words 2>&1 >/dev/full) || got=$?
    case $got$text in
    '1lightshow: cannot write the standard output'*) ;;
    *) fail "$words >/dev/full: status $got, $text" ;;
    esac
done

# A slip fills neither the disk nor the memory.
limit='--no-limit writes it all the same'
little_memory() { prlimit --as=2000000000 --cpu=20 "$@"; }
if ! little_memory "$lightshow" --version >/dev/null 2>&1; then # with a sanitizer
    little_memory() { "$@"; }
fi
within=little_memory
printf 'OLA Show\n1 0\n1\n1 1\n1\n' >blinks
printf '{"fps": 1000, "layers": {"1.512": [["Hold", [255], 1200000]]}}' >last
refuses 1 "cannot write /dev/null: it takes more than 1 GB; $limit" \
    blinks --loop 600000 --override last 0 --write /dev/null
{ echo 'OLA Show' && yes "$(printf '%065000d 0\n0' 1)"; } 2>/dev/null |
    refuses 2 'standard input:30768: there is more than 1 GB; --no-limit reads it all the same' -
{ echo '{' && yes "$(printf '%065000d' 0 | tr 0 ' ')"; } 2>/dev/null |
    refuses 2 'standard input: has more than 1 GB; --no-limit reads it all the same' -
mkdir thousand
"$lightshow" a --last 1000 --split 1 thousand/p
[ "$(find thousand -type f | wc -l)" -eq 1000 ] || fail 'writes no 1000 files'
refuses 2 '--split 1 p: 1001 files are more than 1000; --no-limit writes them all the same' \
    a --last 1001 --split 1 p
printf '{"fps": 1000, "layers": {"1.1": [["Hold", [7], 2147483647]]}}' >longest
refuses 2 '--split 1 p: 2147483647 files are more than 1000; --no-limit writes them all the same' \
    longest --split 1 p
for edit in '--append a' '--insert a 0' '--insert a 2147483647' '--override a 2147483647'; do
    # shellcheck disable=SC2086 # words on purpose
    refuses 2 "$edit: the show would last 2147483.797 s, and 2147483.647 s is the most" \
        longest $edit
done
refuses 2 '--loop 14316558: the show would last 2147483.7 s, and 2147483.647 s is the most' \
    a --loop 14316558
refuses 2 '--loop 30000000: the show would last 4500000 s, and 2147483.647 s is the most' \
    a --loop 30000000
printf '{"fps": 1000, "layers": {"1.1": [["Hold", [1], 4294967295], ["Hold", [2], 6]]}}' >longer
refuses 2 'longer: Animation lasts 2147483648 frames or more' longer
refuses 2 '/dev/zero:1: a recording begins with "OLA Show"' /dev/zero
refuses 2 '--labels: /dev/zero:1: a label is start and end in seconds and a name, with tabs between' \
    a --labels /dev/zero
refuses 2 '--labels: /dev/null: is empty' a --labels /dev/null
printf 'OLA Show\n' >torn
head -c 70000 /dev/zero | tr '\0' 1 >>torn
refuses 2 'torn:2: a universe needs a space and values after it' torn
{ printf 'OLA Show\n1 0'; head -c 70000 /dev/zero | tr '\0' 0; } >torn
refuses 2 'torn:2: a line has fewer than 65536 bytes' torn
within=''
# shellcheck disable=SC2016 # $0 is that of the inner sh
little_memory sh -c '{ echo "{"; cat /dev/zero; } | "$0" - --write out' "$lightshow" 2>said &&
    fail 'reads an endless file'
grep -qx 'lightshow: standard input: line 2, column 1: unexpected "\\u0000"' said ||
    fail "says of an endless file: $(cat said)"
# Writing takes as long as what is written, however many universes or milliseconds there are.
quickly() {
    little_memory timeout 5 "$lightshow" "$@" --write out || fail "$* takes too long"
}
quickly --rotation 255 0 500000s 500000s 1s
[ "$(wc -l <out)" -gt 4000 ] || fail 'writes too little of a slow rotation'
{
    echo 'OLA Show'
    for universe in $(seq 8000); do printf '%s 1\n0\n%s 2\n1\n' "$universe" "$universe"; done
} >universes
quickly universes
[ "$(wc -l <out)" = 16001 ] || fail "writes $(wc -l <out) lines of many universes"
"$lightshow" a --last 1001 --split 1 p --no-limit
[ "$(echo p*[0-9] | wc -w)" = 1001 ] || fail 'splits into no 1001 files'
rm p*[0-9]

# A signal, and what else ends it while it writes, leaves the old file and nothing besides.
echo old >out
for signal in INT TERM HUP PIPE; do
    {
        until draft=$(ls -d .draft-*-0 2>/dev/null); do sleep 0.05; done
        kill -s $signal "$(echo "$draft" | cut -d- -f2)"
    } &
    got=0
    timeout 20 "$lightshow" blinks --loop 600000 --override last 0 --no-limit --write out || got=$?
    wait $!
    [ $got -gt 0 ] || fail "goes on after $signal"
    [ "$(cat out)" = old ] && [ "$(echo .draft*)" = '.draft*' ] || fail "$signal leaves $(ls -A)"
done

# What belongs to others, and what may not be written: as another user than root.
if [ "$(id -u)" -eq 0 ]; then
    chmod 711 .
    cp "$lightshow" program
    mkdir libraries theirs
    ldd "$lightshow" | sed -n 's/.*=> \(.*libanimationmodel[^ ]*\).*/\1/p' |
        xargs -r -I{} cp {} libraries
    chmod 755 a b program libraries
    echo old >theirs/mine
    cp theirs/mine theirs/read-only
    chown nobody theirs/*
    chmod 444 theirs/read-only
    chmod 755 theirs
    mkdir shared
    echo old >shared/roots
    chmod 666 shared/roots
    chmod 1777 shared
    as_nobody() {
        LD_LIBRARY_PATH=$folder/libraries setpriv --reuid=nobody --regid=nogroup --clear-groups "$@"
    }
    lightshow=./program within=as_nobody
    refuses 1 'cannot write theirs/read-only: Permission denied' a --write theirs/read-only
    refuses 1 'cannot write theirs/new: Permission denied' a --write theirs/new
    for file in theirs/mine shared/roots; do
        as_nobody ./program a --write $file 2>said
        same a $file 'in place'
        grep -qx "lightshow: $file: written in place, since no draft could replace it" said ||
            fail "writes $file in place and says $(cat said)"
        [ "$(echo "${file%/*}"/.draft*)" = "${file%/*}/.draft*" ] || fail "leaves a draft of $file"
    done
    [ "$(stat -c %U shared/roots)" = root ] || fail 'changes the owner of a file'
    echo old >theirs/mine
    chown nobody theirs/mine
    as_nobody ./program b --split 15 theirs/mine 2>/dev/null && fail 'splits where it may not write'
    as_nobody ./program a --write theirs/mine --write none/b 2>/dev/null && fail 'writes none/b'
    echo old >shared/nobodys
    chown nobody shared/nobodys
    "$lightshow" a --write shared/nobodys
    [ "$(stat -c %U shared/nobodys)" = nobody ] || fail 'makes a file of another user root'"'"'s'
fi

#!/bin/sh
# terminal.sh LIGHTSHOW DEMO: what the two programs draw on a terminal, and where there is none.
set -eu
lightshow=$(readlink -f "$1")
demo=$(readlink -f "$2")
. "$(dirname "$(readlink -f "$0")")/scratch.sh"
unset NO_COLOR
export SHELL=/bin/sh

on_terminal() { # what the command draws there, with ^ for the signs that begin a colour
    script -qc "$1" /dev/null </dev/null | tr -d '\r' | sed 's/\x1b\[/^/g'
}
compare() { # what is drawn, what should be
    [ "$1" = "$2" ] || {
        printf 'terminal.sh: draws\n%s\ninstead of\n%s\n' "$1" "$2" >&2
        exit 1
    }
}

# Values stand where there is room for them before the next key; intro and outro are marked.
cat >long.json <<'END'
{ "fps": 1000, "introSize": 20, "outroSize": 33, "layers": {
    "1.1": [["Transition", [0, 255], 40], ["Hold", [7], 20], ["Wait", [], 40], ["NoValue", [], 19]],
    "1.2": [["Hold", [10], 6], ["Hold", [20], 5], ["Transition", [25, 30], 13], ["Hold", [40], 9]] } }
END
in_80_columns='119 frames, 0.119 s at 1000 fps, intro 20, outro 33, 2 frames a column
frame    0         20        40        60        80        100
         intro=====                                 outro============
0001.001 |0>255              |7        |~~~~~~~~~~~~~~~~~~~|-        |
0001.002 |10| |25>30 |40                                             |'
compare "$("$lightshow" long.json)" "$in_80_columns"

# A terminal has a width of its own, but for one that does not know it.
compare "$(on_terminal "stty cols 0; NO_COLOR=1 '$lightshow' long.json")" "$in_80_columns"
compare "$(on_terminal "stty cols 40; NO_COLOR=1 '$lightshow' long.json")" \
    '119 frames, 0.119 s at 1000 fps, intro 20, outro 33, 4 frames a column
frame    0           50           100
         intro                outro====
0001.001 |0>255    |7   |~~~~~~~~~|-   |
0001.002 |||   |                       |'

# A timeline just fills its width, or has twice as many frames a column.
cat >short.json <<'END'
{ "fps": 1000, "layers": { "1.1": [["Hold", [0], 5], ["Hold", [255], 4], ["NoValue", [], 1]] } }
END
compare "$(on_terminal "stty cols 20; NO_COLOR=1 '$lightshow' short.json")" \
    '10 frames, 0.01 s at 1000 fps, intro 0, outro 0
frame    0
0001.001 |0   |255||'
"$lightshow" short.json --append short.json --keep 0 11 --write longer.json
compare "$(on_terminal "stty cols 20; NO_COLOR=1 '$lightshow' longer.json")" \
    '11 frames, 0.011 s at 1000 fps, intro 0, outro 0, 2 frames a column
frame    0
0001.001 |0| |||'

# What has a value has its colour.
dark='^48;2;44;64;128m^97m'
light='^48;2;255;209;102m^30m'
compare "$(on_terminal "'$lightshow' short.json --keep 4 10")" \
    "6 frames, 0.006 s at 1000 fps, intro 0, outro 0
frame    0
0001.001 $dark|^0m$light|^0m${light}2^0m${light}5^0m${light}5^0m|^0m"

# The played demo hides the cursor and gives it back, however it is ended; NO_COLOR asks for signs.
plays() { # signal, the environment, what lights look like
    played=$(on_terminal "$2 timeout -s $1 1 '$demo' --play" | tail -n 1)
    case $played in
    "^?25l^?7l  $3 $3 $3 $3 $3 $3 $3 $3 frame 0 of 115^K"*"^K^?7h^?25h") ;;
    *)
        printf 'terminal.sh: ended by %s, the demo plays\n%.300s\n' "$1" "$played" >&2
        return 1
        ;;
    esac
}
plays INT LC_ALL=C.UTF-8 "^38;2;44;64;128m$(printf '\342\227\217')^0m" &
first=$!
plays TERM 'LC_ALL=C.UTF-8 NO_COLOR=1' . &
second=$!
plays INT LC_ALL=C .
wait $first
wait $second

# While it is stopped the cursor is there, and it is hidden again when it goes on.
stopped=$(on_terminal "'$demo' --play & player=\$!; sleep 0.5; kill -s TSTP \$player; sleep 0.3
    echo; echo stopped; kill -s CONT \$player; sleep 0.3; kill -s TERM \$player; wait \$player" |
    grep -A 2 stopped -B 1)
case $stopped in
*'^?7h^?25h
stopped
^?25l^?7l'*'^?7h^?25h') ;;
*)
    printf 'terminal.sh: stopped, the demo plays\n%.700s\n' "$stopped" >&2
    exit 1
    ;;
esac

# What takes long shows how far it is, on one line that is gone in the end. A clock that runs ten
# thousand times as fast makes a second of what is too short to be seen.
command -v faketime >/dev/null || {
    echo 'terminal.sh: without faketime (Debian: faketime), what takes long is left out'
    exit 0
}
if ! prlimit --as=2000000000 "$lightshow" --version >/dev/null 2>&1; then
    echo 'terminal.sh: with a sanitizer, which hangs in such a clock, what takes long is left out'
    exit 0
fi
digit='[0-9]'
tells() { # job, then the words after lightshow
    job=$1
    shift
    told=$(on_terminal "faketime -f '+0 x10000' '$lightshow' $*")
    # shellcheck disable=SC2254 # a pattern
    case $told in
    *"^?7l$job ... "$digit*' %^K^?7h^K'*) ;;
    *)
        printf 'terminal.sh: %s does not tell of %s, but\n%.700s\n' "$*" "$job" "$told" >&2
        exit 1
        ;;
    esac
}
{
    echo '{"fps": 1000, "layers": {"1.1": ['
    yes '["Hold", [0], 1], ["Hold", [255], 1],' | head -n 10000
    echo '["Hold", [0], 1]]}}'
} >many.json
red=$(printf 'red\033[31m.json')
cp many.json "$red"
tells 'reading many.json' many.json --write many
tells writing many --write many.fseq --step 1
digit='[6-9]' # in the second half, in which keys are made of what was read
tells 'reading many.fseq' many.fseq --describe
digit='[0-9]'
tells writing many.json --write many.json
mkfifo pipe.json
{ printf '{' && sleep 0.1 && tail -c +2 short.json; } >pipe.json &
tells 'reading pipe.json' pipe.json
{ printf 'OLA Show\n1 7\n' && sleep 0.1 && printf '9\n1 8\n9\n'; } >pipe.json &
tells 'reading pipe.json' pipe.json
cat many.json >pipe.json &
digit='[1-9]' # how much is read of a pipe, nobody knows
tells 'reading pipe.json' pipe.json
digit='[0-9]'
tells 'reading red\x1b[31m.json' "'$red' --describe"
tells fitting many --loop 20 --fit --step 1
tells drawing many --svg many.svg
tells looping many.json --keep 0 1 --loop 20000
tells splitting many --keep 0 100 --split 1 piece

#!/bin/sh
# lightshow.sh PROGRAM: what each edit of lightshow makes of a small recording, and what it refuses.
set -eu
lightshow=$(readlink -f "$1")
. "$(dirname "$0")/scratch.sh"
printf 'OLA Show\n1 10,20\n100\n1 30\n50\n' >a
printf 'OLA Show\n1 9\n0\n2 7\n20\n2 8\n20\n' >b

fail() {
    echo "lightshow $1" >&2
    exit 1
}
makes() { # what is written, on one line, then the arguments
    expected=$1
    shift
    got=$("$lightshow" "$@" --write out 2>&1 && sed 1d out | tr '\n' ' ') || true
    [ "$got" = "$expected " ] || fail "$*: $got instead of $expected"
}
reads() { # what is written of it, on one line, then the recording; and what is written is read again
    printf 'OLA Show\n%b' "$2" >in
    makes "$1" in
    mv out again
    makes "$1" again
}
# a value that stays; a last line of values without milliseconds
reads '1 7,0 40 1 7,255 10 1 7,0 1' '1 7,0\n40\n1 7,255\n10\n1 7,0\n'
# universes in turn, CR LF, a comma at the end, fewer values
reads '1 4 0 2 1,2,3 20 2 5 30' '2 1,2,3,\r\n0\r\n1 4\r\n20\r\n2 5\r\n0\r\n1 4\r\n30\r\n'
# a universe that begins later, and is silent in between; the greatest one comes last
reads '10000  0 4294967295 1 5 10000 2 5 10000  5 10000 2 5' \
    '4294967295 1\n5\n10000 2\n5\n10000 \n5\n10000 2\n5'
# what lasts for no time
reads '1 1 18 1 3 1' '1 1\n9\n1 2\n0\n1 1\n9\n1 3\n0'
# as many channels, and as many milliseconds, as there may be
channels=$(printf '%0511d7' 0 | sed 's/0/0,/g')
reads "1 $channels 40" "1 $channels\n40\n"
reads '1 7 2147483646' '1 7\n2147483646\n'
printf 'OLA Show\n1 7\n2147483646\n1 8\n' >in
makes '1 7 2147483646 1 8 1' in
makes '1 10,20 100 1 30 50' a
makes '1 10,20 50 1 30 20' a --keep 50 120
makes '1 10,20 50 1 30 50' a --keep 0.05s 1s
makes '1 10,20 50 1 30 30' a --remove 50 120
# channels that are not in what is inserted keep what they had, and so do its own after it
makes '1 10,20 50 1 9,20 0 2 7 20 2 8 20 1 10,20 50 1 30 50' a --insert b 50
makes '1 10,20 100 1 30 70 1 9 0 2 7 20 2 8 20' a --insert b 170
makes '1 10,20 100 1 30 50 1 9 0 2 7 20 2 8 20' --append b a
makes '1 10,20 50 1 9,20 0 2 7 20 2 8 20 1 10,20 0 2  10 1 30 50' a --override b 50
makes '1 10,20 100 1 30 20 1 10,20 60 1 30 50' a --intro 40 --outro 30 --loop 2
makes '1 10,20 100 1 30 20 1 10,20 60 1 30 20 1 10,20 60 1 30 50' a --intro 40 --outro 30 --loop 3
makes '1 10,20 100 1 30 20 1 10,20 100 1 30 20' a --keep 0 120 --loop 2
makes '1 10,20 100 1 30 20' a --loop 2 --keep 0 120
makes '1 10,20 40 1 30 20 1 10,20 40 1 30 20' a --last 60 --loop 2
makes '1 10,20 3 1 30 1' a --last 4
makes '1 10,20 40 1 30 20' a --loop 2 --last 0.12s --keep 0 60
makes '1 0,0,0,0,0,0,0,0 1 1 128,0,0,0,0,0,0,0 1 1 255,128,0,0,0,0,0,0 1' --rotation 255 0 2 2 1 --keep 0 3
makes '1 255,128,0,0,0,0,0,0 1 1 128,255,128,0,0,0,0,0 1' --rotation 255 0 2 2 1 --keep 2 4
makes '1 3,3,3,3,3,3,3,3 1 1 5,3,3,3,3,3,3,3 1 1 4,3,3,3,3,3,3,3 1 1 3,3,3,3,3,3,3,3 1 1 3,5,3,3,3,3,3,3 1' \
    --rotation 5 3 1 2 3 --keep 0 5
makes '1 10,20 100 1 30 50' a --intro 90 --outro 60 --loop 1

# times by the names of labels, wherever these are read
printf '0.05\t0.12\tverse\n\\\t20\t40\n0.120\t.14\tlast chorus\r\n0\t0.1\t140\n0\t0\ttwice\n' >labels
printf '0.0004\t0.0005\ttwice\n1e-1\t1\tverse:end\n' >labels2
makes '1 10,20 50 1 30 20' a --labels labels --keep verse 'last chorus'
makes '1 10,20 50 1 30 20' a --keep verse verse:end --labels labels
makes '1 10,20 50' a --keep verse verse:end --labels labels --labels labels2
makes '1 10,20 20 1 30 50' a --remove 0 30 --keep verse 'last chorus' --labels labels
makes '1 10,20 100 1 30 40' a --labels labels --remove 140 200
makes '1 10,20 80 1 30 40' a --labels labels --last verse:end

# a show that sends nothing lasts as long, alone and within others
printf 'OLA Show\n1 9\n50\n' >nine
printf 'OLA Show\n1 \n1000\n' >silent
makes '1 9 50 1  1000 1 9 50' nine --append silent --append nine
makes '1  1000' silent
makes '1  300 1 9 50' silent --keep 0 300 --append nine

# a channel that waits keeps the end of what it had: before that, and after NoValue, it has nothing
waits() { # what is written of it, on one line, then the keys of two channels, and edits
    expected=$1
    printf '{"fps": 1000, "layers": {"1.1": [%s], "1.2": [%s]}}' "$2" "$3" >waiting.json
    shift 3
    makes "$expected" waiting.json "$@"
}
wait10='["Wait", [], 10]' one='["Hold", [1], 10]' none='["NoValue", [], 10]'
waits '1 1 30' "$one, $wait10, $wait10" ''
waits '1 1 20' "$one" "$wait10, $wait10"
waits '1  10 1 1 10' "$wait10, $one" ''
waits '1 1 10 1  20' "$one, $none, $wait10" ''
waits '1 1 10 1 0,1 20' "$one, $none, $wait10" "$wait10, $one" --append waiting.json --keep 0 0.03s
waits '1 0 1 1 1 1 1 3 10' '["Transition", [0, 2.6], 2], ["Wait", [], 10]' '' --append nine --keep 0 12
# what was kept is kept where the show is cut
waits '1 1 20' "$one, $wait10, $wait10" '' --keep 5 25
waits '1 1 20' "$one, $wait10, $wait10" '' --remove 0 10
waits '1 1 25 1 9 50 1 1 5' "$one, $wait10, $wait10" '' --insert nine 25
waits '1 1 15 1 9 50 1 1 5' "$one, $wait10, $wait10, $wait10, $wait10, $wait10, $wait10" '' --override nine 15
waits '1 1,2 10 1 0,2 10' "$one, $none, $wait10" '["Hold", [2], 5]' --remove 10 20
waits '1 1 30' "$one, $wait10, $wait10" '' --outro 10 --loop 1
"$lightshow" waiting.json --split 20 waited
[ "$(sed 1d waited2 | tr '\n' ' ')" = '1 1 10 ' ] || fail 'forgets what a channel had where it is split'

printf '{"fps": 1000, "layers": {"1.1": [["Hold", [7], 100], ["Wait", [], 100]]}}' >in
"$lightshow" in --write waited.fseq
makes '1 7 200' waited.fseq

# animations as JSON: ends at the nearest millisecond, a Transition played, parts that stay parts
printf '{"fps": 300, "introSize": 1, "outroSize": 4, "layers": {"1.2": [["Hold", [7], 1],
    ["Transition", [0, 255], 2], ["NoValue", [], 1], ["Hold", [300], 1]], "01.001": []}}' >c
rising='1 0,7 3 1 0,0 1 1 0,36 1 1 0,73 1 1 0,109 1 1 0,146 1 1 0,182 1 1 0,219 1 1  3 1 0,255 4'
makes "$rising" c
"$lightshow" c --write c.json
makes "$rising" c.json
for member in '"0001.002": \[$' '"introSize": 3,' '"outroSize": 14,'; do
    grep -q "$member" c.json || fail "writes no $member"
done
printf 'OLA Show\n9999 1\n0\n10000 1\n' >in
"$lightshow" in --write in.json
for name in 9999.001 :0000010000.001; do
    grep -q "\"$name\": " in.json || fail "calls no layer $name"
done
shows() { # what is written of it, on one line, then the animation
    printf '%b' "$2" >in
    makes "$1" in
}
# blanks before, and no frame rate
shows '1 7 40' ' \n{"layers": {"1.1": [["Hold", [7], 1]]}}'
# after a byte order mark, recordings as well
shows '1 7 40' '\357\273\277{"layers": {"1.1": [["Hold", [7], 1]]}}'
shows '1 7 40' '\357\273\277OLA Show\n1 7\n40\n'
# values that no channel can have
shows '1 0 10 1 255 20' '{"fps": 100, "layers": {"1.1": [["Hold", [-1], 1], ["Hold", [256], 2]]}}'
# the last channel, and the longest show
shows "1 $channels 40" '{"layers": {"1.512": [["Hold", [7], 1]]}}'
shows '1 7 2147483647' '{"fps": 1000, "layers": {"1.1": [["Hold", [7], 2147483647]]}}'
# a key that lasts no millisecond is gone
printf '{"fps": 4000, "layers": {"1.1": [["Hold", [1], 1], ["Hold", [2], 7]]}}' >d
"$lightshow" d --write d.json
grep -q '\["Hold", \[1\]' d.json && fail 'keeps a key of no time'
# through pipes, which can be read only once
# shellcheck disable=SC2002 # no file in the place of a pipe
cat a | makes '1 10,20 100 1 30 50' /dev/stdin
# shellcheck disable=SC2002
cat c | makes "$rising" /dev/stdin
"$lightshow" a --write a.json
makes '1 10,20 100 1 30 50' a.json

"$lightshow" a --append a --split 80 piece --svg a.svg
for piece in 1=10,20:80 2=10,20:20:30:50:10,20:10 3=10,20:80 4=10,20:10:30:50; do
    got=$(sed 1d "piece${piece%%=*}" | sed 's/^1 //' | tr '\n' ':')
    [ "$got" = "${piece#*=}:" ] || fail "--split: $piece, $got"
done
[ ! -e piece5 ] && grep -q '<svg' a.svg || fail 'writes the wrong files'
"$lightshow" a | tr '\n' ' ' | grep -q 'at 1000 fps.* 0001.002 |20 ' || fail 'draws no timeline'

within='' file=''
refuses() { # status, what is said, then the arguments
    status=$1 said=$2
    shift 2
    echo old >out
    got=0
    text=$($within "$lightshow" "$@" --write out 2>&1) || got=$?
    [ "$got" = "$status" ] && [ "$text" = "lightshow: $said" ] ||
        fail "$*: status $got, $text instead of $status, $said$file"
    [ "$(cat out)" = old ] || fail "$*: is refused and writes"
    [ "$(echo out*)" = out ] || fail "$*: is refused and leaves $(echo out*)"
}
is_none() { # the line and what is wrong there, then the file
    printf '%b' "$2" >bad
    file=" for $2"
    refuses 2 "bad:$1" bad
    file=
}
is_none ' is empty' ''
is_none '1: a recording begins with "OLA Show"' 'OLA show\n'
is_none '2: a universe needs a space and values after it' 'OLA Show\n1\n'
is_none '2: a universe cannot be "-1"' 'OLA Show\n-1 0\n'
is_none '2: a universe cannot be "4294967296"' 'OLA Show\n4294967296 0\n'
is_none '4: a value cannot be "256"' 'OLA Show\n1 0\n40\n1 0,256'
is_none '2: a value cannot be ""' 'OLA Show\n1 0,,1\n'
is_none '2: a value cannot be "0 1"' 'OLA Show\n1 0 1\n'
is_none '2: a universe has no more than 512 values' "OLA Show\n1 $(printf '%0513d' 0 | sed 's/0/0,/g')"
is_none '3: a time in milliseconds cannot be "1 0"' 'OLA Show\n1 0\n1 0\n'
is_none '3: a time in milliseconds cannot be "2147483647"' 'OLA Show\n1 0\n2147483647\n'
is_none '3: a time in milliseconds cannot be ""' 'OLA Show\n1 0\n\n'
is_none '5: a time in milliseconds cannot be "1"' 'OLA Show\n1 0\n2147483646\n1 1\n1\n'
is_none ' line 1, column 1: invalid literal at "/"' '// a show\n{}'
is_none ' line 1, column 3: invalid literal at "/"' '{ /* a show */ }'
is_none ' line 1, column 1: invalid literal at "#"' '# a show\n{}'
is_none ' needs an object with layers, not array' '[]'
is_none ' /layers/1.1/0/0: needs Transition, Hold, NoValue, Wait or a number from -2147483648 to 2147483647, not "hold"' \
    '{"layers": {"1.1": [["hold", [1], 1]]}}'
is_none ' a layer is called UNIVERSE.CHANNEL, such as 1.5, not "lamp"' '{"layers": {"lamp": []}}'
is_none ' a layer is called UNIVERSE.CHANNEL, such as 1.5, not "1.513"' '{"layers": {"1.513": []}}'
is_none ' a layer is called UNIVERSE.CHANNEL, such as 1.5, not "1.0"' '{"layers": {"1.0": []}}'
is_none ' the channel of layer "1.1" has another one' '{"layers": {"1.1": [], "1.01": []}}'
for fps in 0 -25 inf -inf nan; do
    case $fps in *[0-9]*) quoted=$fps ;; *) quoted="\"$fps\"" ;; esac
    is_none " Frame rates ($fps and 1000) should be above 0 and finite to change them" \
        "{\"fps\": $quoted, \"layers\": {\"1.1\": [[\"Wait\", [], 1]]}}"
done
is_none ' Animation would last 2147483648 frames or more' \
    '{"fps": 999.99, "layers": {"1.1": [["Wait", [], 2147483647]]}}'
printf 'OLA Show\n1 10,20\n100\n1 300\n' >bad
refuses 2 'bad:4: a value cannot be "300"' bad
refuses 2 'bad:4: a value cannot be "300"' a --append bad
refuses 2 'needs a FILE or --rotation, and not both' --loop 2
refuses 2 'needs a FILE or --rotation, and not both' a --rotation 255 0 1 1 1
refuses 2 '--remove: TO has to come after FROM' a --remove 30 30
refuses 2 '--keep: TO has to come after FROM' a --keep 5 2
refuses 2 '--last: a time such as 1500 or 1.5s cannot be "1.5m"' a --last 1.5m
refuses 2 '--last 0: An animation of 150 frames cannot last 0' a --last 0
said_of() { # the names
    printf '%s; there are verse, last chorus, 140, twice' "$1"
}
refuses 2 "--keep: $(said_of 'no label is called "coda"')" a --labels labels --keep verse coda:end
refuses 2 "--remove: $(said_of 'several labels are called "twice"'), twice, verse:end" \
    a --remove 0 twice --labels labels --labels labels2
refuses 2 '--keep: TO has to come after FROM' a --labels labels --keep verse:end verse
refuses 2 '--last: a time such as 1500 or 1.5s cannot be "verse"' a --last verse
refuses 2 '--split: a time above 0 such as 1500 or 1.5s cannot be "twice"' \
    a --write out --split twice piece --labels labels
refuses 2 '--labels: none: no such file' a --labels none
for line in 'verse' '0\t1' '0\tx\tverse' '-1\t1\tverse' '0\t1e9\tverse'; do
    printf '0\t1\tverse\n%b\n' "$line" >bad
    refuses 2 '--labels: bad:2: a label is start and end in seconds and a name, with tabs between' \
        a --labels bad
done
refuses 2 '--rotation: needs a number from 0 to 255, not "256"' --rotation 255 256 1 1 1
refuses 2 '--rate: needs a number from 1 to 1000, not "0"' a --rate 0
refuses 2 '--rate: needs a number from 1 to 1000, not "1001"' a --rate 1001
makes '1 10,20 100 1 30 50' a --rate 1 --rate 1000
refuses 2 '--split: a time above 0 such as 1500 or 1.5s cannot be "0s"' a --write out --split 0s piece
refuses 2 '--intro 100s: the show lasts 0.15 s' a --intro 100s
refuses 2 '--outro 61: the show lasts 0.15 s, its intro 0.09 s, its outro 0.061 s' a --intro 90 --outro 61

# What is said is one line, without signs that a terminal obeys, and not longer than people read.
is_none '1: a recording begins with "OLA Show"' 'OLA Show\033[2J\n1 0\n'
is_none '2: a value cannot be "\x1b[2J\x07\x00\xff\xc2\x9b"' 'OLA Show\n1 \033[2J\a\000\377\302\233\n'
is_none ' a layer is called UNIVERSE.CHANNEL, such as 1.5, not "é\x0aü"' '{"layers": {"é\\nü": []}}'
sixty=$(printf '%060d' 0 | tr 0 9)
is_none "2: a value cannot be \"$sixty...\"" "OLA Show\n1 ${sixty}1\n"
head -c 20000000 /dev/zero | tr '\0' x >long
{ printf 'OLA Show\n1 ' && cat long; } >bad
refuses 2 "bad:2: a value cannot be \"$(head -c 60 long)...\"" bad
for begin in '{"layers": {"' '{"' '{"layers": {"1.1": [["' '{"layers": {"1.1": [["Hold", ["' '{"fps": "'; do
    { printf %s "$begin" && cat long; } >bad
    for end in '' '": 1}'; do
        echo "$end" >>bad
        text=$("$lightshow" bad 2>&1) && fail "reads $begin..."
        [ "${#text}" -lt 1100 ] && [ "$(printf '%s\n' "$text" | wc -l)" = 1 ] || fail "says too much of $begin..."
    done
done
rm long bad
refuses 2 "$(printf '%s: no such file' "$sixty")" "$sixty"
refuses 2 '\x1b[2J: no such file' "$(printf '\033[2J')"
makes '1 10,20 100 1 30 50' a --write -.x
cmp out ./-.x || fail 'writes no file called -.x'
"$lightshow" -.x --write -.5
cmp out ./-.5 || fail 'writes no file called -.5'
refuses 2 'The following argument was not expected: -.y' -.x -.y
refuses 2 '--write: needs a word, not "-x"' a --write -x
"$lightshow" --version | grep -qxE 'lightshow [0-9]+\.[0-9]+\.[0-9]+' || fail 'tells no version'

# What a show holds.
described=$("$lightshow" c --append b --describe)
[ "$described" = 'format: JSON
length: 57 ms, intro 3, outro 0
step: 1 ms
keys: 1 Transition, 5 Hold, 1 NoValue, 3 Wait
channels:
  universe 1: 1 to 2
  universe 2: 1
never lit: none' ] || fail "describes $described"
printf 'OLA Show\n1 0,0,0,9,0\n40\n7 0\n100\n' >in
described=$("$lightshow" in --describe)
[ "$described" = 'format: recording
length: 140 ms, intro 0, outro 0
step: 20 ms
keys: 6 Hold, 1 NoValue
channels:
  universe 1: 1 to 5
  universe 7: 1
never lit:
  universe 1: 1 to 3, 5
  universe 7: 1' ] || fail "describes $described"
described=$("$lightshow" in --json --describe | tr -d ' \n')
[ "$described" = '{"format":"recording","milliseconds":140,"intro":0,"outro":0,"step":20,"keys":{"Hold":6,'\
'"NoValue":1},"channels":{"1":[1,2,3,4,5],"7":[1]},"neverLit":{"1":[1,2,3,5],"7":[1]}}' ] ||
    fail "describes $described as JSON"

#!/bin/sh
# lightshow-olad.sh PROGRAM: plays shows by a real olad on the loopback, records what it sends, and
# compares each frame with what the show has then; and what happens without olad.
set -eu
lightshow=$(readlink -f "$1")
. "$(dirname "$0")/scratch.sh"
daemon=''
recorder=''
finish() {
    for process in $recorder $daemon; do kill "$process" 2>/dev/null || true; done
    wait
    rm -rf "$folder"
}
trap finish EXIT
fail() {
    echo "lightshow and olad: $1" >&2
    exit 1
}

# It listens on the loopback, and nothing but a dummy device is enabled.
mkdir conf
for plugin in artnet dmx4linux e131 espnet ftdidmx gpio karate kinet milinst nanoleaf opendmx \
    openpixelcontrol osc pathport renard sandnet shownet spi spidmx stageprofi uartdmx usbdmx \
    usbserial; do
    echo 'enabled = false' >"conf/ola-$plugin.conf"
done
echo 'enabled = true' >conf/ola-dummy.conf
as_user=
if [ "$(id -u)" -eq 0 ]; then
    as_user='setpriv --reuid=olad --regid=nogroup --clear-groups'
    chmod 711 .
    chown -R olad conf
fi
start_daemon() {
    # shellcheck disable=SC2086 # words on purpose
    $as_user olad -c "$folder/conf" --no-http --no-register-with-dns-sd >olad.log 2>&1 &
    daemon=$!
    tries=0
    until ola_patch -d 1 -p 0 -u 1 >/dev/null 2>&1; do
        tries=$((tries + 1))
        [ "$tries" -lt 100 ] || fail "olad does not start: $(cat olad.log)"
        sleep 0.1
    done
}
record() { # file, then the command that plays
    recording=$1
    shift
    ola_recorder -r "$recording" -u 1 >recorder.log 2>&1 &
    recorder=$!
    sleep 1
    "$@" >/dev/null
    sleep 0.5
    kill -INT "$recorder"
    wait "$recorder" || true
    recorder=
}
values() { sed -n 's/^1 //p' "$1"; }
# What universe 1 of a recording has every so many milliseconds, dark up to channel 512.
sampled() { # recording, milliseconds
    awk -v step="$2" '
        function row(line,    n, v, i, text) {
            n = split(line, v, ",")
            for (i = 1; i <= 512; i++) text = text (i > 1 ? "," : "") (i <= n ? v[i] : 0)
            return text
        }
        NR > 1 && NR % 2 == 0 { now = row($2) }
        NR > 1 && NR % 2 == 1 { for (end += $1; at < end; at += step) print now }' "$1"
}

if ola_patch -d 1 -p 0 -u 1 >/dev/null 2>&1; then fail 'an olad runs already: not touched'; fi
start_daemon
"$lightshow" --rotation 255 10 400 0.6s 150 --write show

# Every frame that arrives is the one that the show has then, and in the end all is dark.
record played "$lightshow" show --play
{ sampled show 25; sampled show 25 | sed -n '1s/[0-9][0-9]*/0/gp'; } >expected
values played | diff expected - >difference || fail "other frames arrive: $(head -c 400 difference)"
echo "$(wc -l <expected) frames played, recorded and compared"
lasts=$(($(wc -l <expected) * 25 - 25))
awk -v lasts="$lasts" 'NR > 1 && NR % 2 == 1 { all += $1 }
    END { exit !(all > lasts - 150 && all < lasts + 150) }' played ||
    fail "the show does not last $lasts milliseconds"

# An edited recording is one for ola_recorder as well.
"$lightshow" played --keep 1s 2s --loop 2 --write edited
ola_recorder --verify edited >verified 2>&1
if grep -qi error verified; then fail "$(cat verified)"; fi
record again ola_recorder --playback edited
values edited >expected
values again | diff expected - >difference || fail "other frames: $(head -c 400 difference)"
echo "$(wc -l <expected) frames of an edited recording played, recorded and compared"

# Ctrl-C leaves no light on.
# shellcheck disable=SC2016 # $0 is that of the inner sh
record stopped sh -c 'timeout --signal=INT 0.5 "$0" show --play || true' "$lightshow"
[ -z "$(values stopped | tail -1 | tr -d '0,')" ] || fail 'lights stay on after Ctrl-C'
[ "$(values stopped | wc -l)" -gt 10 ] || fail 'nothing was played'

says() { # what is to be said, with status 1
    got=0
    text=$(timeout 5 "$lightshow" show --play 2>&1) || got=$?
    [ "$got" = 1 ] && [ "$text" = "lightshow: $1" ] || fail "status $got, \"$text\""
}
{
    sleep 1
    kill -KILL "$daemon"
} &
says 'olad went away'
wait $! "$daemon" || true
daemon=
says 'no olad answers on this machine; is it running?'

#!/bin/sh
# docs.sh QUICKSTART LIVE GUIDE [DEMO]: whether the pages show what these programs are and draw: the
# guide all pictures but one, which is the demo's and is left out with it.
set -eu
quickstart=$(readlink -f "$1")
live=$(readlink -f "$2")
guide=$(readlink -f "$3")
demo=${4:+$(readlink -f "$4")}
root=$(readlink -f "$(dirname "$0")/..")
. "$root/tests/scratch.sh"

# The pictures in docs/.
"$guide" . >/dev/null
[ -z "$demo" ] || "$demo" --svg demo.svg >/dev/null
for picture in "$root"/docs/*.svg; do
    name=$(basename "$picture")
    [ "$name" = demo.svg ] && [ -z "$demo" ] || diff "$picture" "$name"
done

code_of() { # page: its fragments of C++, without blank lines
    # shellcheck disable=SC2016 # these backquotes are Markdown's
    sed -n '/^```cpp$/,/^```$/p' "$1" | sed '/^```/d; /^$/d'
}
code_of "$root/docs/guide.md" >guide.md
sed -n '/guide begins here/,/guide ends here/p' "$root/examples/guide.cpp" |
    sed '1d; $d; /^$/d; s/^    //' | diff guide.md -
code_of "$root/README.md" >README.md
sed '/^$/d' "$root/examples/quickstart.cpp" | diff README.md -

code_of "$root/docs/live.md" | sort >live.md
{
    sed -n '/page begins here/,/page goes on in/p' "$root/examples/live.h"
    sed -n '/page goes on here/,/page ends here/p' "$root/examples/live.cpp" | sed 's/^    //'
} | sed '/^\/\/ .* page /d; /^\/\/ The page /d; /^$/d' | sort | diff live.md -
"$live" >live.out
grep -q '^7: lamp 0.7$' live.out
"$quickstart" | grep -q '^95 frames, 3.8 s$'

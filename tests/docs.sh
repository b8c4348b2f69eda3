#!/bin/sh
# docs.sh PROGRAMS: whether the pages show what the programs of the examples are and draw. PROGRAMS
# is the folder of the programs.
set -eu
programs=$(readlink -f "$1")
root=$(readlink -f "$(dirname "$0")/..")
. "$root/tests/scratch.sh"

# The pictures in docs/.
"$programs/demo" --svg demo.svg >/dev/null
"$programs/guide" . >/dev/null
for picture in "$root"/docs/*.svg; do
    diff "$picture" "$(basename "$picture")"
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
"$programs/live" >live.out
grep -q '^7: lamp 0.7$' live.out
"$programs/quickstart" | grep -q '^95 frames, 3.8 s$'

#!/bin/sh
# docs.sh FOLDER [DEMO]: whether the pages show what the examples in FOLDER are, print and draw: the
# guide all pictures but one, which is the demo's and is left out with it.
# shellcheck disable=SC2016 # backquotes are Markdown's
set -eu
examples=$(readlink -f "$1")
demo=${2:+$(readlink -f "$2")}
root=$(readlink -f "$(dirname "$0")/..")
. "$root/tests/scratch.sh"

# The pictures in docs/.
"$examples/guide" . >/dev/null
[ -z "$demo" ] || "$demo" --svg demo.svg >/dev/null
for picture in "$root"/docs/*.svg; do
    name=$(basename "$picture")
    [ "$name" = demo.svg ] && [ -z "$demo" ] || diff "$picture" "$name"
done

code_of() { # page, then a language: its fragments, without blank lines
    sed -n "/^\`\`\`${2-cpp}\$/,/^\`\`\`\$/p" "$1" | sed '/^```/d; /^$/d'
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
"$examples/live" >live.out
grep -q '^7: lamp 0.7$' live.out

# What the README says that comes out.
"$examples/surprises" >surprises
code_of "$root/README.md" text >printed
"$examples/quickstart" | diff printed -
sed -n 's/^| [0-9] `\(.*\)` |.*/\1/p' "$root/README.md" >edits
[ "$(wc -l <edits)" -eq 5 ]
while read -r edit; do
    grep -qF "    $edit;" "$root/examples/guide.cpp" || {
        echo "The picture of edits has no $edit" >&2
        exit 1
    }
done <edits
sed -n '/^## What may surprise$/,/^## Speed$/p' "$root/README.md" | tr -s '\n ' ' ' |
    grep -oE '(`[^`]*`: )?`[^`]*` (is|throws) `[^`]*`' | diff - surprises

# The cookbook, in both languages, and its timelines.
for language in cpp python; do
    [ $language = cpp ] && program=examples/cookbook.cpp || program=python/cookbook.py
    code_of "$root/docs/cookbook.md" $language >recipes
    sed -n '/cookbook begins here/,/cookbook ends here/p' "$root/$program" |
        sed '1d; $d; /^$/d' | diff recipes -
done
code_of "$root/docs/cookbook.md" text >timelines
[ ! -e "$examples/cookbook" ] || "$examples/cookbook" | diff timelines -

# Prepares a page for Doxygen: the page is named after its file, so that no folder's name gets into
# its address, and each heading after the page and its words, so that links find it. Links go to
# those names.

function label(text) { # as in links to headings: small letters, hyphens for blanks
    text = tolower(text)
    gsub(/[^a-z0-9_ -]/, "", text)
    gsub(/ /, "-", text)
    return text
}

function linked(line,    before, link, page, heading) {
    while (match(line, /\]\(([A-Za-z0-9.\/-]*\.md)?(#[^)]*)?\)/) && RLENGTH > 3) {
        before = substr(line, 1, RSTART - 1)
        link = substr(line, RSTART + 2, RLENGTH - 3)
        heading = link ~ /#/ ? link : ""
        sub(/.*#/, "-", heading)
        page = link
        sub(/#.*/, "", page)
        page = page == "" ? name : name_of(page)
        line = before "](@ref " page heading ")" substr(line, RSTART + RLENGTH)
    }
    return line
}

function name_of(file) {
    gsub(/.*\/|\.md$/, "", file)
    return file == "files" ? "animation-files" : tolower(file) # Doxygen has a files.html
}

FNR == 1 { name = name_of(FILENAME) }
/^```/ { fenced = !fenced }
!fenced && /^#/ {
    marks = text = $0
    sub(/[^#].*/, "", marks)
    gsub(/^#+ *|`/, "", text)
    if (marks == "#") {
        $0 = marks " " text (name == "readme" ? "" : " {#" name "}")
    } else {
        heading = label(text)
        $0 = marks " " text " {#" name "-" heading (used[heading] ? "-" used[heading] : "") "}"
        ++used[heading]
    }
}
!fenced && !/^    / { $0 = linked($0) }
{ print }
!fenced && /^# / && name ~ /^(guide|cookbook|python|live)$/ { print "\n@tableofcontents{HTML:2}" }

# The pictures of the guide open in the page on which to try the library.
match($0, /^!\[.*\]\(guide-[0-9]+\.svg\)$/) {
    title = picture = $0
    gsub(/^!\[|\].*/, "", title)
    gsub(/.*\(|\.svg\)$/, "", picture)
    print "\n<a class=\"try\" href=\"../index.html#example=" picture "\">Try \"" title \
        "\" in the browser</a>"
}

# Names a page after its file, so that no folder's name gets into its address.
FNR == 1 && FILENAME !~ /README/ {
    name = FILENAME
    gsub(/.*\/|\.md$/, "", name)
    $0 = $0 " {#" tolower(name) "}"
}
{ print }
# The pictures of the guide open in the page on which to try the library.
match($0, /^!\[.*\]\(guide-[0-9]+\.svg\)$/) {
    title = name = $0
    gsub(/^!\[|\].*/, "", title)
    gsub(/.*\(|\.svg\)$/, "", name)
    print "\n<a class=\"try\" href=\"../index.html#example=" name "\">Try \"" title \
        "\" in the browser</a>"
}

# Names a page after its file, so that no folder's name gets into its address.
FNR == 1 && FILENAME !~ /README/ {
    name = FILENAME
    gsub(/.*\/|\.md$/, "", name)
    $0 = $0 " {#" tolower(name) "}"
}
{ print }

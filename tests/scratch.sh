# shellcheck shell=sh
# Sourced by a script: goes to a folder of the script's own, which is gone when the script ends,
# signals included.
folder=''
trap 'rm -rf "$folder"' EXIT
trap 'exit 1' HUP INT TERM
folder=$(mktemp -d)
cd "$folder" || exit

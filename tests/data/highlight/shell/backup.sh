#!/bin/sh
# Copies the folders that are named to the backup disk.
set -eu

readonly TARGET="/mnt/backup"
export LC_ALL=C KEEP=14
count=0 # how many were copied

usage() {
  cat <<EOT
usage: $0 FOLDER...
  keeps "$KEEP" days # not a comment
EOT
  exit 2
}

function log_line () {
  printf '%s %s\n' "$(date +%H:%M)" "$*" >>"${TARGET}/log" 2>&1
}

  indented(){ return 0; }

[ $# -gt 0 ] || usage
trap 'rm -f "$TARGET/.lock"' EXIT

for folder in "$@"; do
  if test -d "$folder" && [ "${#folder}" -lt 256 ]; then
    case $folder in
      /proc | /sys) continue ;;
      *.tmp) log_line "skipped \"$folder\""; shift ;;
    esac
    tar -cf - "$folder" | gzip -9 > "$TARGET/$(basename $folder).tar.gz" &
    count=$((count + 1))
  else
    echo "no such folder: $folder" >&2
  fi
done
wait $!

while read -r line; do
  echo "$line"
done < "$TARGET/log"

until [ $count -eq 0 ]; do
  count=`expr $count - 1`
  local last=$? flags=$- pid=$$ all=$@
done

cat <<-'PLAIN'
	nothing $here
	PLAIN
command -v rsync; true; unset count

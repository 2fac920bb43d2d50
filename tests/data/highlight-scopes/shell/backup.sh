: #!/bin/sh
= ppppppppp
: # Copies the folders that are named to the backup disk.
= ccccccccccccccccccccccccccccccccccccccccccccccccccccccc
: set -eu
= kkk
:
: readonly TARGET="/mnt/backup"
= kkkkkkkk        sssssssssssss
: export LC_ALL=C KEEP=14
= kkkkkk               nn
: count=0 # how many were copied
=       n cccccccccccccccccccccc
:
: usage() {
= fffff
:   cat <<EOT
=       ssssss
: usage: $0 FOLDER...
= ssssssssssssssssssss
:   keeps "$KEEP" days # not a comment
= sssssssssssssssssssssssssssssssssssss
: EOT
= sss
:   exit 2
=   bbbb n
: }
:
: function log_line () {
= kkkkkkkk ffffffff
:   printf '%s %s\n' "$(date +%H:%M)" "$*" >>"${TARGET}/log" 2>&1
=   bbbbbb sssssssss ssssssssssssssss ssss oosssssssssssssss noon
: }
:
:   indented(){ return 0; }
=   ffffffff    kkkkkk no
:
: [ $# -gt 0 ] || usage
=   vv     n   oo
: trap 'rm -f "$TARGET/.lock"' EXIT
= kkkk        sssssssssssssss
:
: for folder in "$@"; do
= kkk        kk sssso kk
:   if test -d "$folder" && [ "${#folder}" -lt 256 ]; then
=   kk bbbb    sssssssss oo      ccccccccccccccccccccccccc
:     case $folder in
=     kkkk vvvvvvv kk
:       /proc | /sys) continue ;;
=             o       kkkkkkkk oo
:       *.tmp) log_line "skipped \"$folder\""; shift ;;
=                       ssssssssssssssssssssso kkkkk oo
:     esac
=     kkkk
:     tar -cf - "$folder" | gzip -9 > "$TARGET/$(basename $folder).tar.gz" &
=               sssssssss o       n o ssssssssssssssssssssssssssssssssssss o
:     count=$((count + 1))
=                      n
:   else
=   kkkk
:     echo "no such folder: $folder" >&2
=     bbbb sssssssssssssssssssssssss oon
:   fi
=   kk
: done
= kkkk
: wait $!
= bbbb vv
:
: while read -r line; do
= kkkkk bbbb        o kk
:   echo "$line"
=   bbbb sssssss
: done < "$TARGET/log"
= kkkk o sssssssssssss
:
: until [ $count -eq 0 ]; do
= kkkkk   vvvvvv     n  o kk
:   count=`expr $count - 1`
=               vvvvvv   n
:   local last=$? flags=$- pid=$$ all=$@
=   kkkkk      vv       vv     vv     vv
: done
= kkkk
:
: cat <<-'PLAIN'
=     sssssssssss
: 	nothing $here
= sssssssssssssss
: 	PLAIN
= ssssss
: command -v rsync; true; unset count
= bbbbbbb         o bbbbo kkkkk
:

#!/usr/bin/env bash
# The installed manual is the pages that were built, compressed, and nothing else:
# check_pages.sh INSTALLED BUILT...
set -euo pipefail

installed=$1
shift
mapfile -t pages < <(find "$@" -name '*.1')
[ "${#pages[@]}" -gt 0 ]
diff <(printf '%s.gz\n' "${pages[@]##*/}" | sort) <(find "$installed" -type f -printf '%P\n' | sort)
for page in "${pages[@]}"; do
  gunzip --stdout "$installed/${page##*/}.gz" | cmp - "$page"
done

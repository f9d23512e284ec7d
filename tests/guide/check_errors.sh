#!/usr/bin/env bash
# The table of errors has a row for every number of the header, and the header's texts:
# check_errors.sh PAGE HEADER.
set -euo pipefail

page=$1 header=$2 status=0

# The header with each constant on one line.
constants() {
  awk '/^constexpr/ { line = ""; open = 1 }
       open { sub(/^ +/, " "); line = line $0 }
       open && /;/ { sub(/;.*/, "", line); print line; open = 0 }' "$header"
}

missing() {
  echo "$page lacks $1" >&2
  status=1
}

numbers=$(constants | grep --invert-match ReportedBit |
  sed --quiet --regexp-extended 's/.*(int|long) [A-Za-z]+ = ([0-9A-Fa-fx]+)(UL)?$/\2/p')
[ "$(wc --lines <<<"$numbers")" -gt 30 ] || missing "the numbers: they were not understood"
while read -r number; do
  grep --quiet "^| $number |" "$page" || missing "a row for $number"
done <<<"$numbers"

texts=$(constants | sed --quiet --regexp-extended 's/.*\[\] = ?"(.*)"$/\1/p')
[ "$(wc --lines <<<"$texts")" -gt 25 ] || missing "the texts: they were not understood"
while read -r text; do
  grep --quiet --fixed-strings "\"$text\"" "$page" || missing "the text \"$text\""
done <<<"$texts"
exit "$status"

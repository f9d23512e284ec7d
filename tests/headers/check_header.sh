#!/usr/bin/env bash
# Compiles one public header alone as C++11: check_header.sh COMPILER INCLUDE-FOLDER HEADER.
# It may use nothing but its own folder and the standard library.
set -euo pipefail

compiler=$1 include=$2 header=$3
source="#include \"$header\""
options=(-std=c++11 -I "$include" -x c++ -)

"$compiler" -pedantic-errors -Wall -Wextra -Wconversion -Werror -fsyntax-only "${options[@]}" \
  <<<"$source"

# The headers that it reads, among which none may come from Boost or from elsewhere in the tree.
read_headers=$("$compiler" -M "${options[@]}" <<<"$source" | tr --squeeze-repeats '[:space:]' '\n')
if strangers=$(grep --extended-regexp "/boost/|^$(dirname "$include")/" <<<"$read_headers" |
  grep --invert-match "^$include/"); then
  echo "$header reads: $strangers" >&2
  exit 1
fi

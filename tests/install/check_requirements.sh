#!/usr/bin/env bash
# The page tells the newest versions of the system's libraries that some files need, and which
# libraries from elsewhere: check_requirements.sh READELF PAGE NAME FILE...
set -euo pipefail
export LC_ALL=C

readelf=$1 page=$2 name=$3
shift 3

newest() { # kind of version, file...
  local kind=$1
  shift
  "$readelf" --version-info --wide "$@" | grep --only-matching --extended-regexp "\b${kind}_[0-9.]+" |
    sort --version-sort | tail --lines 1
}

# Libraries that come from elsewhere than the compiler, the C library and this tree.
others() { # file...
  "$readelf" --dynamic --wide "$@" | sed --quiet 's/.*(NEEDED).*\[\(.*\)\]/\1/p' |
    grep --invert-match --extended-regexp '^(ld-linux[^.]*|lib(c|m|stdc\+\+|gcc_s|ostrevan-(recorder|simulator)))\.so' |
    sort --unique | paste --serial --delimiters ' '
}

row="| $name | $(newest GLIBC "$@") | $(newest GLIBCXX "$@"), $(newest CXXABI "$@") | $(others "$@") |"
if ! grep --quiet --line-regexp --fixed-strings "$row" "$page"; then
  echo "$page lacks: $row" >&2
  exit 1
fi

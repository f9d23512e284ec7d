#!/usr/bin/env bash
# The page tells the newest versions of the system's libraries that some files need, with which GCC
# those of libstdc++ came, and which libraries are from elsewhere:
# check_requirements.sh READELF PAGE NAME FILE...
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

# The release of GCC that brought a version of libstdc++.
release() { # version
  case $1 in
    GLIBCXX_3.4.21 | CXXABI_1.3.9) echo 5 ;;
    GLIBCXX_3.4.22 | CXXABI_1.3.10) echo 6 ;;
    GLIBCXX_3.4.2[34] | CXXABI_1.3.11) echo 7 ;;
    GLIBCXX_3.4.25) echo 8 ;;
    GLIBCXX_3.4.2[678]) echo 9 ;;
    GLIBCXX_3.4.29) echo 11 ;;
    GLIBCXX_3.4.30) echo 12 ;;
    *) echo "unknown, for $1" ;;
  esac
}

# Libraries that come from elsewhere than the compiler, the C library and this tree.
others() { # file...
  "$readelf" --dynamic --wide "$@" | sed --quiet 's/.*(NEEDED).*\[\(.*\)\]/\1/p' |
    grep --invert-match --extended-regexp '^(ld-linux[^.]*|lib(c|m|stdc\+\+|gcc_s|ostrevan-(recorder|simulator)))\.so' |
    sort --unique | paste --serial --delimiters ' '
}

glibcxx=$(newest GLIBCXX "$@")
cxxabi=$(newest CXXABI "$@")
gcc=$({ release "$glibcxx" && release "$cxxabi"; } | sort --version-sort | tail --lines 1)
row="| $name | $(newest GLIBC "$@") | $glibcxx, $cxxabi | GCC $gcc | $(others "$@") |"
if ! grep --quiet --line-regexp --fixed-strings "$row" "$page"; then
  echo "$page lacks: $row" >&2
  exit 1
fi

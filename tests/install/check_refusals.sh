#!/usr/bin/env bash
# The CMake package is found as it is, and not found when more is asked of it:
# check_refusals.sh CMAKE PREFIX ARCHITECTURE PROJECT.
set -euo pipefail

cmake=$1 prefix=$2 architecture=$3 project=$4
folder=$(mktemp --directory)
trap 'rm --recursive "$folder"' EXIT

found_in() { # prefix, what is wanted
  "$cmake" --fresh -S "$project" -B "$folder/build" -G Ninja \
    -DCMAKE_LIBRARY_ARCHITECTURE="$architecture" -DCMAKE_PREFIX_PATH="$1" "-DWANTED=$2"
}

refused_in() {
  if found_in "$@"; then
    echo "found in $1: $2" >&2
    return 1
  fi
}

found_in "$prefix" "0.1;COMPONENTS;simulator"
refused_in "$prefix" "99.0"
refused_in "$prefix" "0.1;COMPONENTS;hardware"

cp --recursive "$prefix" "$folder/bare"
find "$folder/bare" -depth -path '*/ostrevanhvk3/simulator' -exec rm --recursive {} +
found_in "$folder/bare" "0.1"
refused_in "$folder/bare" "0.1;COMPONENTS;simulator"

#!/usr/bin/env bash
# Each of these folders is refused outside the prefix, by its name:
# check_absolute_folders.sh CMAKE SOURCE FOLDER...
set -euo pipefail

cmake=$1 source=$2
shift 2
build=$(mktemp --directory)
trap 'rm --recursive "$build"' EXIT

for folder in "$@"; do
  if "$cmake" -S "$source" -B "$build" -G Ninja "-UCMAKE_INSTALL_*" \
    "-DCMAKE_INSTALL_$folder=/elsewhere" >"$build/output" 2>&1; then
    echo "CMAKE_INSTALL_$folder may be absolute" >&2
    exit 1
  fi
  grep --quiet "CMAKE_INSTALL_$folder is a folder below the prefix" "$build/output"
done

#!/usr/bin/env bash
# Builds and runs the documentation's client as a project of its own:
# check_cmake_client.sh CMAKE COMPILER PREFIX PROJECT.
set -euo pipefail

folder=$(mktemp --directory)
trap 'rm --recursive "$folder"' EXIT
"$1" -S "$4" -B "$folder" -G Ninja -DCMAKE_CXX_COMPILER="$2" -DCMAKE_PREFIX_PATH="$3"
"$1" --build "$folder"
"$1" --build "$folder" --target test
[ "$(head --lines 2 "$folder/finger.pgm" | tr '\n' ' ')" = "P5 498 438 " ]

#!/usr/bin/env bash
# Files with names of the closed libraries lie in the simulator's folder alone, all of them:
# check_shadows.sh PREFIX SIMULATOR LIBRARY...
set -euo pipefail

prefix=$1 simulator=$2
shift 2
[ "$#" -gt 0 ]
for library in "$@"; do
  [ "$(find "$prefix" -name "lib$library.so*")" = "$simulator/lib$library.so" ]
done

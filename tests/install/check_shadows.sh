#!/usr/bin/env bash
# Files with names of the closed libraries lie in the folders of the recorder and of the simulator
# alone, all of them in each: check_shadows.sh PREFIX RECORDER SIMULATOR LIBRARY...
set -euo pipefail

prefix=$1 recorder=$2 simulator=$3
shift 3
[ "$#" -gt 0 ]
for library in "$@"; do
  diff <(find "$prefix" -name "lib$library.so*" | sort) - <<END
$recorder/lib$library.so
$simulator/lib$library.so
END
done

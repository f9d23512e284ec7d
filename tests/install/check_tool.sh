#!/usr/bin/env bash
# The installed tool captures a simulated finger with the plug-in and the simulator that are
# installed with it: check_tool.sh TOOL LIBRARIES SIMULATOR.
set -euo pipefail

tool=$1 libraries=$2 simulator=$3
folder=$(mktemp --directory)
trap 'rm --recursive "$folder"' EXIT

"$tool" capture --simulate --pace unlimited --out "$folder/finger.png" --json |
  grep --quiet '"status": *"ok"'
[ "$(head --bytes 4 "$folder/finger.png" | tail --bytes 3)" = PNG ]

# A recording plays on what is installed.
"$tool" record "$folder/recording" --simulate -- "$tool" list --simulate --pace unlimited \
  >"$folder/recorded" 2>/dev/null
"$tool" list --replay "$folder/recording" | diff - "$folder/recorded"

# What the loader maps.
mapped=$(LD_DEBUG=files "$tool" list --simulate 2>&1 | sed --quiet 's/.*calling init: //p')
for library in "$libraries/libostrevanhvk3.so" "$simulator/libKR9ScanAPI.so"; do
  grep --quiet --line-regexp --fixed-strings "$library" <<<"$mapped"
done

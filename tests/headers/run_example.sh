#!/usr/bin/env bash
# Runs the example with the plug-in and the simulator where the loader looks for libraries:
# run_example.sh EXAMPLE FOLDER-OF-PLUG-IN FOLDER-OF-SIMULATOR.
set -euo pipefail

folder=$(mktemp --directory)
trap 'rm --recursive "$folder"' EXIT
LD_LIBRARY_PATH=$2:$3 "$1" "$folder/finger.pgm"
[ "$(head --lines 2 "$folder/finger.pgm" | tr '\n' ' ')" = "P5 498 438 " ]

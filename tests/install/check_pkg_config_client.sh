#!/usr/bin/env bash
# Builds and runs the documentation's client with what pkg-config says of it:
# check_pkg_config_client.sh FOLDER-OF-PC-FILE EXAMPLES.
set -euo pipefail

folder=$(mktemp --directory)
trap 'rm --recursive "$folder"' EXIT
cd "$folder"
PKG_CONFIG_PATH=$1 "$2/client/run" "$2/capture.cpp"
[ "$(head --lines 2 finger.pgm | tr '\n' ' ')" = "P5 498 438 " ]

#!/usr/bin/env bash
# The plug-in names no folder in which to look for libraries: check_search_path.sh READELF PLUG-IN.
set -euo pipefail

dynamic=$("$1" --dynamic --wide "$2")
if grep --extended-regexp 'RPATH|RUNPATH' <<<"$dynamic"; then
  exit 1
fi

#!/usr/bin/env bash
# Checks that a library has no memory of its own in each thread: the loader ends a process in which
# there is none left for it. READELF LIBRARY
set -euo pipefail

if "$1" --program-headers --wide "$2" | grep -E '^ *TLS '; then
  echo "the library has thread-local memory"
  exit 1
fi

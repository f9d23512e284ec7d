#!/usr/bin/env bash
# Folders and programs are 0755, other files 0644, and the programs are these:
# check_modes.sh PREFIX PROGRAM...
set -euo pipefail

wrong=$(find "$1" \( -type d -o -type f -perm /111 \) ! -perm 0755 -print \
  -o -type f ! -perm /111 ! -perm 0644 -print)
diff - <(find "$1" -type f -perm /111 | sort) < <(printf '%s\n' "${@:2}" | sort)
if [ -n "$wrong" ]; then
  echo "$wrong"
  exit 1
fi

#!/usr/bin/env bash
# The plug-in imports nothing that reads the environment, speaks to a network or runs a program:
# check_imports.sh NM PLUG-IN.
set -euo pipefail

imports=$("$1" -D --undefined-only --format=just-symbols "$2")
if grep --extended-regexp \
  '^_*(getenv|secure_getenv|environ|(un|put|set|clear)env|socket(pair)?|connect|bind|accept4?|send(to|msg|mmsg)?|recv(from|msg|mmsg)?|getaddrinfo|system|popen|v?fork|clone|exec[lv]p?e?|execveat|fexecve|posix_spawnp?)(@|$)' \
  <<<"$imports"; then
  exit 1
fi

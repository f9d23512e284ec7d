#!/usr/bin/env bash
# The examples on a page, its blocks of this language, are the files that are built and run:
# check_page.sh LANGUAGE PAGE EXAMPLE...
set -euo pipefail

block=$(awk -v begin="\`\`\`$1" \
  '$0 == begin { inside = 1; next } $0 == "```" { inside = 0 } inside' "$2")
diff --label page --label example <(echo "$block") <(cat "${@:3}")

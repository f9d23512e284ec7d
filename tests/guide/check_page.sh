#!/usr/bin/env bash
# The examples on a page are the files that are built and run: check_page.sh PAGE EXAMPLE...
set -euo pipefail

block=$(awk '/^```cpp$/ { inside = 1; next } /^```$/ { inside = 0 } inside' "$1")
diff --label page --label example <(echo "$block") <(cat "${@:2}")

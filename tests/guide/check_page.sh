#!/usr/bin/env bash
# The example on a page is the file that is built and run: check_page.sh PAGE EXAMPLE.
set -euo pipefail

block=$(awk '/^```cpp$/ { inside = 1; next } /^```$/ { inside = 0 } inside' "$1")
diff --label page --label example <(echo "$block") "$2"

#!/usr/bin/env bash
# The example in the README is the file that is built and run: check_readme.sh README EXAMPLE.
set -euo pipefail

block=$(awk '/^```cpp$/ { inside = 1; next } /^```$/ { inside = 0 } inside' "$1")
diff --label README --label example <(echo "$block") "$2"

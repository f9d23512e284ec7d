#!/usr/bin/env bash
# The plug-in exports what the list has and nothing else: check_exports.sh NM PLUG-IN LIST.
set -euo pipefail
export LC_ALL=C

diff --label list --label plug-in "$3" <("$1" -D --defined-only --format=just-symbols "$2" | sort)

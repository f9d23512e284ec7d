#!/usr/bin/env bash
# The installed entry of a desktop's menus leads to a program and an icon that are installed:
# check_desktop_entry.sh ENTRY PROGRAMS ICONS.
set -euo pipefail

entry=$1 programs=$2 icons=$3
program=$(sed --quiet 's/^Exec=\([^ ]*\).*/\1/p' "$entry")
icon=$(sed --quiet 's/^Icon=//p' "$entry")
[ -n "$program" ] && [ -x "$programs/$program" ]
[ -n "$icon" ] && [ -s "$icons/$icon.svg" ]

#!/usr/bin/env bash
# The installed completion knows the commands: check_completion.sh SCRIPT.
set -euo pipefail

# shellcheck disable=SC1090 # made by the tool
source "$1"
complete -p hvk3
export COMP_WORDS=(hvk3 li) COMP_CWORD=1
_hvk3
[ "${COMPREPLY[*]}" = "list liveness" ]

#!/usr/bin/env bash
# The installed completion offers these words for the last one of a command line:
# check_completion.sh SCRIPT WORDS WORD...
set -euo pipefail

script=$1 expected=$2
shift 2
# shellcheck disable=SC1090 # made of the program's command line
source "$script"
[[ $(complete -p "$1") =~ -F\ ([^ ]+) ]]
export COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
"${BASH_REMATCH[1]}"
[ "${COMPREPLY[*]}" = "$expected" ]

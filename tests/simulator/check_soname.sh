#!/usr/bin/env bash
# A stand-in has the soname of its original: check_soname.sh READELF STAND-IN SONAME.
set -euo pipefail

dynamic=$("$1" --dynamic --wide "$2")
grep --fixed-strings --quiet "Library soname: [$3]" <<<"$dynamic"

#!/usr/bin/env bash
# Installs into an empty prefix, as somebody whose files are nobody else's business, and moves it:
# install.sh CMAKE BUILD PREFIX.
set -euo pipefail

umask 077
rm -rf "$3" "$3.first"
"$1" --install "$2" --prefix "$3.first"
mv "$3.first" "$3"

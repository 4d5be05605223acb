#!/bin/bash
# Reference pages of the installed header, by Doxygen; whatever it warns of is an error.
set -euo pipefail
cd "$(dirname "$0")/.."

if ! command -v doxygen >/dev/null; then
    echo "doxygen is missing: apt-get install doxygen" >&2
    exit 1
fi
mkdir -p build/docs
doxygen docs/Doxyfile
echo "Reference pages: build/docs/html/talmor__kp410__port_8h.html"

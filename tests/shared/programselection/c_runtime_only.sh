#!/usr/bin/env bash
# c_runtime_only.sh NM OBJECT...: fails when an object needs a symbol of the C++ runtime or of a
# C++ library, and shows it.
set -euo pipefail

nm=$1
shift
needed=$("$nm" --undefined-only --print-file-name -- "$@")
if grep -E ' U (_Z|__cxa|__gxx|_Unwind)' <<<"$needed"; then
    echo "The symbols above are not of the C runtime" >&2
    exit 1
fi

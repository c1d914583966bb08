#!/usr/bin/env bash
# Holds the symbols that the shared library exports against the checked list, in both directions.
#   check_symbols.sh LIBRARY LIST     compare
#   check_symbols.sh --list LIBRARY   print what a list for the library would hold
set -euo pipefail
export LC_ALL=C

# Pieces of standard templates have default visibility wherever they are compiled into: they are
# weak (or constants), differ between compilers, and are nobody's interface.
exported() {
    nm --dynamic --demangle --defined-only "$1" | awk '
        {
            type = $2
            name = $0
            sub(/^[^ ]* [^ ]* /, "", name)
            head = name
            sub(/[(<].*/, "", head)
            if (type ~ /[WVuR]/ && head ~ /(^| )(std|__gnu_cxx)::/) next
            print name
        }' | sort -u
}

if [[ $1 == --list ]]; then
    exported "$2"
    exit
fi

difference=$(diff --unchanged-line-format= --old-line-format='missing: %L' \
    --new-line-format='not in the list: %L' "$2" <(exported "$1")) || {
    printf '%s\n' "$difference"
    exit 1
}

#!/bin/sh
# The interface's own names as a library exports them: every exported symbol, demangled, without
# its parameter list (overloads share a name, and the width of long and size_t differs between
# Linux, 32-bit and 64-bit Windows), without run-time type data (which base-class instantiations a
# compiler exports with a class differs) and without standard-library instantiations.
#   exports.sh names FILE        names exported by a DLL (objdump -p) or a Linux .so (nm -D)
#   exports.sh check DLL LIST    fails, showing the difference, unless DLL exports exactly LIST
set -eu

names() {
    case "$1" in
    *.dll)
        objdump -p "$1" | sed -n '/^\[Ordinal\/Name Pointer\] Table/,/^$/p' |
            sed -n 's/^[[:space:]]*\[[[:space:]]*[0-9]*\][[:space:]]*//p' ;;
    *)
        nm -D --defined-only "$1" | awk '$2 ~ /^[TWDBRVu]$/ { print $3 }' ;;
    esac | c++filt | sed -e 's/^\(vtable\|typeinfo\|typeinfo name\) for /&/' -e 's/(.*$//' |
        grep -v -e '^std::' -e '^__gnu_cxx::' -e '^[^ ]* std::' -e '^[^ ]* __gnu_cxx::' \
            -e '^\(vtable\|typeinfo\|typeinfo name\) for std::' -e '^typeinfo' -e '^_' | LC_ALL=C sort -u
}

case "${1:-}" in
names) names "$2" ;;
check)
    actual=$(mktemp)
    trap 'rm -f "$actual"' EXIT
    names "$2" > "$actual"
    if diff -u "$3" "$actual"; then
        echo "exports of $2 match $3 ($(wc -l < "$3") names)"
    else
        echo "exports of $2 differ from $3 (- missing, + unexpected)" >&2
        exit 1
    fi ;;
*) echo "usage: $0 names FILE | check DLL LIST" >&2; exit 2 ;;
esac

#!/bin/sh
# widl-strict.sh IDL OUTPUT_DIR: runs Wine's IDL compiler and fails on any warning.
set -eu
idl=$1
out=$2
widl="i686-w64-mingw32-widl -I /usr/include/wine/wine/windows -L /usr/lib/i386-linux-gnu/wine/i386-windows"

messages=$(
    $widl -t -o "$out/Corvina.tlb" "$idl" 2>&1 &&
    $widl -h -o "$out/Corvina.h" "$idl" 2>&1 &&
    $widl -u -o "$out/Corvina_i.c" "$idl" 2>&1
) || { printf '%s\n' "$messages" >&2; exit 1; }
if [ -n "$messages" ]; then
    printf '%s\n' "$messages" >&2
    exit 1
fi

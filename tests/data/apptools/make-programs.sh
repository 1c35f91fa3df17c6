#!/bin/sh
# Builds the program files the app tools tests read, in the folder given:
#   sample-arm64   thin arm64 executable for macOS 11, ad hoc signed by the
#                  linker as it does by default for Apple silicon
#   sample-x86_64  thin x86_64 executable for macOS 10.15, unsigned
# Needs clang and ld64.lld (Debian's clang and lld).
set -eu

out=$1
linker=$(command -v ld64.lld || command -v ld64.lld-14 || command -v ld64.lld-15 || command -v ld64.lld-16 || true)
[ -n "$linker" ] || { echo "make-programs.sh: ld64.lld not found (Debian package lld)" >&2; exit 1; }

cd "$out"
printf 'int main(void) { return 0; }\n' > main.c
clang -target arm64-apple-macos11 -c main.c -o arm64.o
"$linker" -arch arm64 -platform_version macos 11.0 11.0 -e _main -o sample-arm64 arm64.o
clang -target x86_64-apple-macos10.15 -c main.c -o x86_64.o
"$linker" -arch x86_64 -platform_version macos 10.15 10.15 -e _main -o sample-x86_64 x86_64.o
rm -f main.c arm64.o x86_64.o

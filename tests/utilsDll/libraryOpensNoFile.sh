#!/usr/bin/env bash
# Loads a library, and loads what it links without it: the library must not open a file of its own.
# usage: libraryOpensNoFile.sh LIBRARY RECORDER
set -euo pipefail
export LC_ALL=C

library=$(realpath "$1")
recorder=$(realpath "$2")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
linked=$(ldd "$library" | sed -nE 's/^.* => (\/[^ ]+) \(.*/\1/p' | paste -sd:)

# record FILE OBJECTS PROGRAM...: what a program loads and opens with these objects in it.
record() {
    : >"$1"
    OPEN_RECORDER_FILE=$1 LD_PRELOAD=$recorder:$2 "$(type -P "$3")" "${@:4}" >/dev/null
    sort -o "$1" "$1"
}

record "$work/cat" "$linked" cat "$0"
if ! grep -qxF "opened $0" "$work/cat"; then
    echo "The recorder does not see what is opened"
    exit 1
fi

record "$work/linked" "$linked" true
record "$work/library" "$linked:$library" true

expected="> loaded $library"
difference=$(diff "$work/linked" "$work/library" | grep '^[<>]' || :)
if [ "$difference" != "$expected" ]; then
    echo "What is loaded and opened with the library (>) and without it (<) differs by"
    echo "$difference"
    echo "and not by this line alone:"
    echo "$expected"
    exit 1
fi

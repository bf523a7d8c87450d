#!/usr/bin/env bash
# Compares the names that a library exports with the list in exported-names.txt.
# To write the list anew: exportedNames.sh LIBRARY --list >exported-names.txt
set -euo pipefail
export LC_ALL=C

library=$1
list=$(dirname "$0")/exported-names.txt

# Names that every compiler and build type emits as they please: type information and tables come
# with their class, and the linker's own marks belong to nobody.
exported() {
    nm --dynamic --demangle --defined-only "$library" | cut -d' ' -f2- | grep -E "^[$1] " | cut -c3- \
        | grep -vE '^(__bss_start|_edata|_end|_init|_fini)$'
}
of_classes='^(typeinfo for|typeinfo name for|vtable for|VTT for|guard variable for) '

strong() {
    exported 'A-TX-Z' | grep -vE "$of_classes" | sort -u
}

if [ "${2:-}" = --list ]; then
    strong
    exit
fi

status=0
if ! difference=$(diff -U0 "$list" <(strong)); then
    echo "Exported names differ from $list (- no longer there, + new):"
    echo "$difference" | grep -E '^[-+][^-+]' || :
    status=1
fi

# Code of templates and inline functions, and what stands beside a class, varies with the compiler; it
# must be ours, Qt's or the standard library's.
own=$(sed -nE 's/^([A-Za-z_]+)::.*/\1/p' "$list" | sort -u | paste -sd'|')
strangers=$(exported 'VWu' | sed -E "s/$of_classes//; s/^(void|bool|int|unsigned int|char) //" \
    | grep -vE "^($own|Singleton<|CRunnableItem<|ThreadSafeVariable<|std::|__gnu_cxx::|Q[A-Z]|Qt[A-Z]|q[A-Z]|operator)" \
    | sort -u || :)
if [ -n "$strangers" ]; then
    echo "Exported names that belong to others:"
    echo "$strangers"
    status=1
fi
exit $status

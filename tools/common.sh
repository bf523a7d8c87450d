# Sourced by the project's scripts: saying what is done, and failing with one clear line.
# The sourcing script sets "name" first, and "failure" if its exit status is to be another than 1.
# shellcheck shell=bash

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

say() {
    echo "$name: $*"
}

fail() {
    echo "$name: $*" >&2
    exit "${failure:-1}"
}

# step WHAT COMMAND...: runs a command silently; if it fails, shows the end of what it printed and says
# which step it was.
step() {
    local what=$1 log
    shift
    say "$what"
    mkdir -p "$root/build"
    log=$(mktemp "$root/build/${name}-step.XXXXXX")
    if ! "$@" >"$log" 2>&1; then
        tail -n 40 "$log" >&2
        rm -f "$log"
        fail "failed: $what"
    fi
    rm -f "$log"
}

# build PRESET [CMAKE ARGUMENT...]: configures and builds one preset.
build() {
    local preset=$1
    shift
    cd "$root"
    step "configuring the preset $preset" cmake --preset "$preset" "$@"
    step "building the preset $preset" cmake --build --preset "$preset"
}

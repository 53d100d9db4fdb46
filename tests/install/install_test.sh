#!/usr/bin/env bash
# An installation works from any place. Reads CMAKE, SOURCE_DIR, BUILD_DIR and SANITIZERS from the
# environment.
set -euo pipefail

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
tree="$work/moved here/tamrix"

fail() {
    echo "install_test: $*" >&2
    exit 1
}

# Runs a command as someone would who has set up nothing.
plainly() {
    env -i PATH="$PATH" HOME="$work" LC_ALL=C.UTF-8 ${PYTHONMALLOC:+PYTHONMALLOC="$PYTHONMALLOC"} \
        ${ASAN_OPTIONS:+ASAN_OPTIONS="$ASAN_OPTIONS"} ${LSAN_OPTIONS:+LSAN_OPTIONS="$LSAN_OPTIONS"} "$@"
}

# expect STATUS TEXT COMMAND...: the command ends with the status and its output has the text.
expect() {
    local status=0 output
    output=$(plainly "${@:3}" 2>&1) || status=$?
    [ "$status" -eq "$1" ] || fail "'${*:3}' ended with $status instead of $1:
$output"
    [[ $output == *"$2"* ]] || fail "'${*:3}' did not write '$2' but:
$output"
}

echo "Installing and moving"
"$CMAKE" --install "$BUILD_DIR" --prefix "$work/installed" >/dev/null
mkdir -p "${tree%/*}"
mv "$work/installed" "$tree"

# The sanitizers' own records name source files; such a build is for tests only.
if [ -z "$SANITIZERS" ]; then
    echo "Looking for paths of this machine"
    if named=$(grep -rlF -e "$SOURCE_DIR/src/" -e "$BUILD_DIR" -e "$work/installed" "$tree"); then
        fail "these files name a folder of this machine:
$named"
    fi
fi

echo "Running the runner"
expect 0 "Usage" "$tree/bin/tamrixrunner" --help
expect 0 "passed" "$tree/bin/tamrixrunner" run "$SOURCE_DIR/examples/suite_first"

echo "Running a case in each language that was built"
for plugin in py:tamrixpython-3 js:tamrixjavascript tcl:tamrixtcl pl:tamrixperl rb:tamrixruby; do
    suffix=${plugin%%:*}
    script=$SOURCE_DIR/tests/conformance/cases/fixtures/script.$suffix
    if [ -e "$BUILD_DIR/lib/${plugin#*:}.so" ] && [ -e "$script" ]; then
        [ -e "$tree/lib/${plugin#*:}.so" ] || fail "${plugin#*:} was not installed"
        mkdir -p "$work/languages/$suffix"
        cp "$script" "$work/languages/$suffix/test.$suffix"
    fi
done
expect 0 "passed" "$tree/bin/tamrixrunner" run "$work/languages"

echo "Building a plug-in against it"
"$CMAKE" -G Ninja -S "$SOURCE_DIR/tests/install/plugin" -B "$work/build" \
    -DCMAKE_PREFIX_PATH="$tree" -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF \
    -DCMAKE_CXX_FLAGS="${SANITIZERS:+-fsanitize=$SANITIZERS}" >/dev/null
"$CMAKE" --build "$work/build"
"$CMAKE" --install "$work/build" --prefix "$tree" >/dev/null
[ -e "$tree/lib/tamrixtcl.so" ] || fail "the plug-in was not installed beside the core"

echo "Running the plug-in in a program of its own and in the runner"
suite=$SOURCE_DIR/tests/install/plugin/suite
expect 0 "made by the plug-in" "$work/build/host" "$tree" "$suite/tst_first/test.tcl"
expect 1 "unknown command 'cry'" "$work/build/host" "$tree" "$suite/tst_second/test.tcl"
expect 0 "made by the plug-in" "$tree/bin/tamrixrunner" run "$suite" tst_first --verbose
expect 1 "unknown command 'cry'" "$tree/bin/tamrixrunner" run "$suite" tst_second

#!/usr/bin/env bash
# try_kit.sh ARCHIVE CAPTURE
# Uses the packed kit as somebody does who has nothing else: unpacked, moved, with no registry file
# and no variable. A .zip is the kit for Windows, and is built for by MinGW and run under Wine.
set -euo pipefail
archive=$(realpath "$1") capture=$(realpath "$2")
here=$(cd "$(dirname "$0")" && pwd)
unset "${!LUMISET_@}" "${!CMAKE_@}" XDG_DATA_HOME

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
cmake -E tar xf "$archive"
mv TarvoLumiset-* 'moved kit'
export PREFIX="$work/moved kit"

fail() { printf 'kit: %s\n' "$1" >&2; exit 1; }

# quietly COMMAND...
# What it says is of interest if it fails.
quietly() { "$@" >log 2>&1 || { cat log >&2; fail "$1 failed"; }; }

# refused WORD... -- COMMAND...
# The command fails, and what it says holds all the words.
refused() {
    local word words=()
    while [ "$1" != -- ]; do words+=("$1"); shift; done
    ! "${@:2}" >log 2>&1 || fail "not refused, with the words ${words[*]}"
    for word in "${words[@]}"; do
        grep -q -- "$word" log || { cat log >&2; fail "refused without the words $word"; }
    done
}

if [[ $archive == *.zip ]]; then
    module=dll
    compilers=('-DCMAKE_SYSTEM_NAME=Windows -DCMAKE_CXX_COMPILER=x86_64-w64-mingw32-g++-posix')
    run() { WINEPATH="$PREFIX/bin" wine "$@"; }
    exports() { x86_64-w64-mingw32-objdump -p "$1" | sed -n 's/^\t\[ *[0-9]*\] \([^+]\)/\1/p'; }
else
    module=so
    compilers=('-DCMAKE_CXX_COMPILER=g++'
               '-DCMAKE_CXX_COMPILER=clang++ -DCMAKE_CXX_FLAGS=-stdlib=libstdc++')
    export PATH="$PREFIX/bin:$PATH"
    run() { "$@"; }
    exports() { nm -D --defined-only --format=posix "$1" | cut -d' ' -f1; }
fi
command="$PREFIX/bin/lumiset-headless$([ $module = dll ] && echo .exe || true)"
lumiset() { run "$command" "$@"; }

# configure SOURCE BUILD OPTION...
configure() { cmake -S "$1" -B "$2" -G Ninja -DTarvoLumiset_DIR="$PREFIX/lib/cmake/TarvoLumiset" "${@:3}"; }

names_nothing_outside() {
    ! grep -rnF -e "$(cd "$here/../.." && pwd)" -e "$work" -e /usr "$PREFIX/lib/cmake" ||
        fail 'a file of the kit names where it was built'
}

refuses_what_does_not_fit() {
    cp -r "$PREFIX/share/TarvoLumiset/examples/hello_core" other
    sed -i 's/INTERFACE 8108/INTERFACE 8107/' other/CMakeLists.txt
    refused 8107 8108 -- configure other build/other "$@"
    sed -i 's/SOURCES.*/INTERFACE 8108)/' other/CMakeLists.txt
    refused 'SOURCES is missing' -- configure other build/other "$@"
    rm -r other
}

# Nothing was left unclaimed, and nothing behind.
lives_well() {
    quietly lumiset run --core "$core" "$@"
    ! grep -E 'Complaint|Message box' log || fail "$core does not live well"
}

# A life of the first Core, in two processes.
lives() {
    local core=$1
    cat >life <<'STEPS'
attach
press 1046
expect at 0.5 Hello_Ball1 0.5,1,0
expect at 2 Hello_Ball1 2,0,0
expect undo "Bounce"
undo
expect nodes 0
redo
expect at 0.5 Hello_Ball1 0.5,1,0
save ball.scene
new
expect nodes 0
open ball.scene
press 1046
expect nodes 1
undo
expect at 2 Hello_Ball1 2,0,0
detach
attach
press 1046
expect nodes 1
merge ball.scene
press 1046
save balls.scene
STEPS
    lives_well --script life
    lives_well --do 'open balls.scene' --do 'press 1046' --do 'expect nodes 2'
}

try_core() {
    local build=build/hello${#1}
    # shellcheck disable=SC2086
    quietly configure "$PREFIX/share/TarvoLumiset/examples/hello_core" $build $1
    quietly cmake --build $build
    local core=$build/Core/Core64.$module
    [ "$(exports $core | sort | xargs)" = 'attach detach getVersion' ] ||
        fail "the exports of $core: $(exports $core | xargs)"
    lives $core
    printf 'The first Core, built with %s: builds, bounces, is undone, saved, opened, merged\n' "$1"
}

try_program() {
    # shellcheck disable=SC2086
    quietly configure "$here/drive" build/drive $1
    quietly cmake --build build/drive
    local core
    core=$(echo build/hello*/Core/Core64.$module | cut -d' ' -f1)
    quietly run build/drive/drive* "$(cat build/drive/plugin)" "$core"
    grep -q Bounce log || fail 'the program that drives the host pressed no button'
}

try_replay_core() {
    quietly lumiset record "$capture" --scene take.scene
    quietly lumiset run take.scene --do detach --do attach
}

# As in a vendor's host: the two files of the kit beside the Core, which is renamed.
try_recorder() {
    local core tape=$work/recorder.tape
    core=$(echo build/hello*/Core/Core64.$module | cut -d' ' -f1)
    mkdir vendor
    cp "$PREFIX"/bin/recorder/Core/* vendor
    cp "$core" "vendor/Core64-real.$module"
    [ "$(exports vendor/Core64.$module | sort | xargs)" = 'attach detach getVersion' ] ||
        fail "the exports of the recorder: $(exports vendor/Core64.$module | xargs)"
    export LUMISET_RECORD_TAPE=$tape
    lives "vendor/Core64.$module"
    unset LUMISET_RECORD_TAPE
    [ -s "$tape" ] || fail 'there is no tape'
    grep -q 'the watch has found nothing' "$tape.txt" || { cat "$tape.txt" >&2; fail 'the watch'; }
    quietly lumiset check-core "$core" --strictness 3
    printf 'The recorder in its place: a tape, and nothing found\n'
}

# Each command of the document as it stands there, in one folder, one after the other.
try_document() {
    awk '/^```sh$/ { on = 1; next } /^```/ { on = 0 } on' "$1" >commands
    [ -s commands ] || fail "$1 holds no commands"
    (mkdir document && cd document && quietly bash -e ../commands)
    printf 'The commands of %s: as it says\n' "$(basename "$1")"
}

names_nothing_outside
refuses_what_does_not_fit ${compilers[0]}
for compiler in "${compilers[@]}"; do try_core "$compiler"; done
try_program "${compilers[0]}"
try_recorder
try_replay_core
[ $module = dll ] || try_document "$PREFIX/share/doc/TarvoLumiset/writing-a-core.md"

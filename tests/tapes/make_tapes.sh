#!/usr/bin/env bash
# make_tapes.sh BUILD
# Makes the tapes of this folder anew with what was built there, each of one road of the system, and
# plays each again. One that begins with "calls" has no word of what the host did.
set -euo pipefail
build=$(realpath "$1")
tapes=$(realpath "$(dirname "$0")")
command=$build/bin/lumiset-headless
hello=$build/examples/hello_core/Core/Core64.so
roads=$build/bin/roads/Core/Core64.so
replay=$build/bin/Core/Core64.so
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp "$tapes"/path.scene "$work"
cd "$work"
cp path.scene brought.scene  # which is found by its digest where only the other one is

# keep TAPE
keep() {
    "$command" tape replay "$1.tape"
    cp "$1.tape" "$tapes"
}

# noted TAPE CORE VERB...
noted() {
    "$command" "${@:3}" --core "$2" --tape "$1.tape" >/dev/null
    keep "$1"
}

# unnoted TAPE CORE VERB...
unnoted() {
    LUMISET_RECORD_CORE=$2 LUMISET_RECORD_TAPE=$PWD/$1.tape \
        "$command" "${@:3}" --core "$build/bin/recorder/Core/Core64.so" >/dev/null
    keep "$1"
}

# by HOW TAPE CORE STEP...
by() {
    local words=() step
    for step in "${@:4}"; do words+=(--do "$step"); done
    "$1" "$2" "$3" run "${words[@]}"
}

# go NUMBER...: the steps that go these roads of the Core's
go() {
    steps=('press 1046')
    local road
    for road in "$@"; do steps+=("time $road" 'press 1046'); done
}

cat >nod.bvh <<'BVH'
HIERARCHY
ROOT Hips
{
  OFFSET 0 0 0
  CHANNELS 6 Xposition Yposition Zposition Zrotation Xrotation Yrotation
  JOINT Head
  {
    OFFSET 0 10 0
    CHANNELS 3 Zrotation Xrotation Yrotation
    End Site
    {
      OFFSET 0 3 0
    }
  }
}
MOTION
Frames: 4
Frame Time: 0.0333333
0 10 0 0 0 0 0 0 0
1 10 0 0 5 0 0 10 0
2 11 0 0 5 9 0 30 2
3 10 0 0 0 9 1 10 4
BVH

by noted bounce "$hello" 'press 1046' 'play 0:1:0.5' undo redo undo
go 1 2 9
by noted look_and_mesh "$roads" "${steps[@]}"
go 3
by noted lens "$roads" "${steps[@]}" undo redo
go 4 12
by noted around "$roads" "${steps[@]}"
go 5 6
by noted take "$roads" "${steps[@]}" undo redo 'time 0' undo 'undo'
go 7
by noted host "$roads" "${steps[@]}"
go 14
by noted unanswered "$roads" "${steps[@]}" 'select Roads_Node1 Roads_Node2' delete undo
go 5
by noted conversion "$roads" "${steps[@]}" 'option 1028' 'press 1046' undo
by noted curve "$roads" 'open path.scene' 'press 1046' 'parent Roads_Node1 Line01' 'time 11' \
    'press 1046'
go 10
by noted merge "$roads" "${steps[@]}" 'merge path.scene' new
go 13
by noted deletion "$roads" "${steps[@]}" 'select Roads_Node1' delete undo redo
noted nod "$replay" record nod.bvh --into path.scene --follow-camera

by unnoted calls_bounce "$hello" 'press 1046' 'save a.scene' new 'open a.scene' \
    'merge a.scene' 'time 1' detach
go 5 8
by unnoted calls_undo "$roads" "${steps[@]}" 'undo 3' 'redo 3' 'undo 2' reset
go 13
by unnoted calls_deletion "$roads" "${steps[@]}" 'select Roads_Node1' delete undo redo undo
go 5 90
by unnoted calls_save "$roads" "${steps[@]}" 'save a.scene' 'open a.scene' 'time 4' 'press 1046'
by unnoted calls_attach "$roads" 'press 1046' detach attach 'option 1028' detach attach 'time 4' \
    'press 1046'
unnoted calls_nod "$replay" record nod.bvh
du -ch "$tapes"/*.tape | tail -1

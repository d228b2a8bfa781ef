#!/bin/bash
# The program as scripts see it: exit status, the lines on standard error, what reaches standard output.
set -u
scenepane=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 1
unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM
failures=0

fail() {
    echo "$*"
    failures=$((failures + 1))
}
# expect STATUS STDERR ARGUMENTS...: runs the program and compares exit status and standard error (without the last line feed)
expect() {
    local status=$1 stderr=$2
    shift 2
    "$scenepane" "$@" >out.txt 2>err.txt
    local got=$?
    if [ "$got" != "$status" ] || [ "$(cat err.txt)" != "$stderr" ]; then
        fail "scenepane $*: status $got, not $status; standard error:
$(cat err.txt)
  not:
$stderr"
    fi
}
# holds TEXT: standard output of the last run contains it
holds() {
    grep -qF -- "$1" out.txt || fail "standard output has no $1:
$(cat out.txt)"
}

# 2 x 2 points in micrometres: (0, 0, 0), (1000, 0, 0), (0, 1000, 0), (1000, 1000, 0)
zero='\0\0\0\0' thousand='\0\0\x7a\x44'
printf "\2\0\2\0$zero$zero$zero$thousand$zero$zero$zero$thousand$zero$thousand$thousand$zero" >square.xdt
cp square.xdt square.abc
odd=$(printf -- '-odd\377.xdt')
cp square.xdt "./$odd"

expect 0 '' --version
[ "$(cat out.txt)" = 'scenepane 5.5.0' ] || fail 'wrong version'
# What draws without a window is this machine's; the processor always can.
expect 0 '' --version --verbose
holds 'scenepane 5.5.0'
for line in 'device   ' 'driver   ' 'vendor   ' 'OpenGL   '; do
    grep -q "^$line." out.txt || fail "standard output has no line $line:
$(cat out.txt)"
done
expect 0 '' --version --verbose --gpu software
holds 'device   software device'
expect 2 'scenepane: --gpu goes with --screenshot, --capture, --pick, --cut and --version --verbose only (see scenepane --help)' --gpu 0
"$scenepane" --version --verbose --gpu 31 >out.txt 2>err.txt && fail 'a device that is not there was accepted'
[ "$(cat out.txt)" = 'scenepane 5.5.0' ] || fail 'no version without a device'
grep -q '^scenepane: there is no viewer: There is no graphics device 31: EGL lists ' err.txt ||
    fail "wrong reason: $(cat err.txt)"
expect 0 '' -V
[ "$(cat out.txt)" = 'scenepane 5.5.0' ] || fail 'wrong version'
expect 0 '' -h
expect 0 '' --help
holds 'Usage: scenepane [options] FILE...'
expect 2 'scenepane: unknown option --what (see scenepane --help)' --what
expect 2 'scenepane: --view takes back, front, right, left, top, bottom, oblique or bottom-y-up, or its number from 0 to 7, not "8" (see scenepane --help)' --view 8
expect 2 'scenepane: --info needs at least one file (see scenepane --help)' --info
mkdir none folder
expect 1 'scenepane: none: the folder holds no file that can be opened
scenepane: none.pcm: there is no such file: check its name and its folder' --info none.pcm none
cp square.xdt folder/b10.xdt
cp square.xdt folder/b9.xdt
printf 'square.xdt\nfolder\n' >list.txt
expect 0 '' --info @list.txt
[ "$(grep -c triangles out.txt)" = 3 ] || fail "not the three files of the list: $(cat out.txt)"
expect 1 'scenepane: folder: this is a folder: --convert reads one file' --convert folder a.ply
expect 1 'scenepane: @list.txt: this is a list of files: --convert reads one file' --convert @list.txt a.ply
expect 1 'scenepane: folder: this is a folder: --export reads one file' --export a.ply --cut 'inside:0,0;5,5;7,0' folder
# What a run would destroy is wrong usage, and nothing is written.
no_picture='a file name that ends in .png, .jpg, .jpeg or .webp and does not begin with -, or - alone for standard output'
cp square.xdt kept.xdt
expect 2 "scenepane: --screenshot takes $no_picture, not \"kept.xdt\" (see scenepane --help)" --screenshot kept.xdt square.xdt
expect 2 "scenepane: --screenshot takes $no_picture, not \"--info\" (see scenepane --help)" --screenshot --info square.xdt
expect 2 "scenepane: --capture takes $no_picture, not \"kept.xdt\" (see scenepane --help)" --capture kept.xdt square.xdt
ln kept.xdt linked.png
ln -s kept.xdt soft.jpg
for picture in linked.png soft.jpg ./linked.png; do
    expect 2 "scenepane: $picture: this file is also read: write another one (see scenepane --help)" --screenshot $picture kept.xdt
done
cmp -s square.xdt kept.xdt || fail 'an input was overwritten'
[ -e ./--info ] && fail 'a file was named like an option'
expect 0 '' --screenshot square.jpg --size 40x30 square.xdt
[ "$(od -An -tx1 -N3 square.jpg | tr -d ' ')" = ffd8ff ] || fail 'no jpg file'
expect 0 '' --screenshot square.webp --size 40x30 square.xdt
[ "$(head -c 4 square.webp)" = RIFF ] || fail 'no webp file'
expect 0 '' --screenshot - --size 40x30 square.xdt
[ "$(head -c 4 out.txt | tail -c 3)" = PNG ] || fail 'no PNG on standard output'
expect 0 '' --screenshot 'of-{view}.png' --views top,front --size 40x30 square.xdt
for view in top front; do
    [ -s of-$view.png ] || fail "the picture from the $view is missing"
done
expect 2 'scenepane: --size takes WIDTHxHEIGHT, each from 1 to 16384, with at most 134217728 pixels together, not "16384x8193" (see scenepane --help)' \
    --screenshot large.png --size 16384x8193 square.xdt
expect 2 'scenepane: --color has no meaning with --convert (see scenepane --help)' --convert --color ff0000 square.xdt a.ply
expect 0 'scenepane: 1 of 1: square.xdt' --info --progress square.xdt
expect 1 'scenepane: a?[2J.ply: there is no such file: check its name and its folder' --info "$(printf 'a\033[2J.ply')"
expect 0 '' --info square.xdt
holds '  triangles      2'
expect 0 '' --info --json square.xdt
holds '"box": [0, 1, 0, 1, -0.01, 0.01]'
expect 0 '' --info --json -- "$odd"
holds '"file": "-odd\udcff.xdt"'
expect 1 'scenepane: square.abc: the type of the file is not known: it is none of pcm, pax, xdt, ply, stl, hps, ois, msh, obj, off, gltf, glb, 3mf, dae and others' --info --json --color ff0000 square.xdt square.abc
holds '"color": "FF0000"'
expect 0 '' --screenshot square.png --size 40x30 square.xdt
[ "$(head -c 4 square.png | tail -c 3)" = PNG ] || fail 'no PNG file'
expect 0 '' --screenshot square.png --gpu software --size 40x30 square.xdt
expect 0 '' --capture capture.png square.xdt
# Width and height in the file's first chunk: 2048 is 00 00 08 00.
[ "$(od -An -tx1 -j16 -N8 capture.png | tr -d ' ')" = 0000080000000800 ] || fail 'the capture has another size'
expect 1 'scenepane: no/a.png: the file could not be replaced: No such file or directory: check the folder and its permissions' --capture no/a.png square.xdt
expect 1 'scenepane: none.pcm: there is no such file: check its name and its folder
scenepane: kept.png: not written, there is nothing to show' --capture kept.png none.pcm
[ -e kept.png ] && fail 'a capture of nothing was written'
expect 1 'scenepane: none.pcm: there is no such file: check its name and its folder' --capture both.png square.xdt none.pcm
[ -s both.png ] || fail 'the capture of the good file is missing'
expect 2 'scenepane: --capture needs at least one file (see scenepane --help)' --capture a.png
expect 2 'scenepane: --size has no meaning with --capture (see scenepane --help)' --capture a.png --size 9x9 square.xdt
# A triangle as text; a picture needs no more of a mesh than --info does.
printf 'ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\nproperty float y\nproperty float z\n' >mesh.ply
printf 'element face 1\nproperty list uchar int vertex_indices\nend_header\n0 0 0\n1 0 0\n0 2.5 0\n3 0 1 2\n' >>mesh.ply
expect 0 '' --info --json mesh.ply
holds '"vertices": 3, "triangles": 1, "box": [0, 1, 0, 2.5, '
# Picks in a box of 6 x 2 x 3, whose diagonal of 7 fills 700 pixels: (2, 1, 0) is at 250,350.
printf 'ply\nformat ascii 1.0\nelement vertex 8\nproperty float x\nproperty float y\nproperty float z\n' >steps.ply
printf 'element face 4\nproperty list uchar int vertex_indices\nend_header\n0 0 0\n6 0 0\n6 2 0\n0 2 0\n' >>steps.ply
printf '4 0 3\n6 0 3\n6 2 3\n4 2 3\n3 0 1 2\n3 0 2 3\n3 4 5 6\n3 4 6 7\n' >>steps.ply
expect 0 '' --pick 250,350 --size 700x700 --pick=350,100 steps.ply
holds '  triangle       1'
holds '350,100'
holds '  nothing'
expect 0 '' --pick 350,100 --size 700x700 --json --pick 250,350 steps.ply --gpu software
holds '{"picks":[{"x":350,"y":100,"object":-1},{"x":250,"y":350,"object":0,"file":"steps.ply","triangle":1,"point":['
expect 1 '' --pick 350,100 --size 700x700 --json steps.ply
holds '{"picks":[{"x":350,"y":100,"object":-1}]}'
expect 1 'scenepane: none.ply: there is no such file: check its name and its folder' --pick 250,350 --size 700x700 none.ply steps.ply
holds '  object         0'
expect 2 'scenepane: --pick 700,0 is outside of the 700x700 pixels (see scenepane --help)' \
    --pick 700,0 --size 700x700 steps.ply
expect 2 'scenepane: --pick takes X,Y, two whole numbers from 0 to 16383, not "-1,0" (see scenepane --help)' \
    --pick -1,0 steps.ply
expect 2 'scenepane: --pick needs at least one file (see scenepane --help)' --pick 1,1
# Markers alone, and the files that fail.
printf '0 0 0\n6 0 0\n0 8 0\n' >points.xyz
printf '0 0 0\n6 0 0\n\n0 0 0\n0 8 0\n' >lines.txt
printf '{"format": "scenepane needles", "version": 1, "needles": [{"id": 1, "pin": [0, 0, 0], "head": [0, 0, 9]}]}' >n.json
for markers in '--points points.xyz' '--lines lines.txt' '--needles n.json' \
    '--points points.xyz --lines lines.txt --needles n.json'; do
    rm -f markers.png
    # Unquoted: options and files are words of their own.
    expect 0 '' --screenshot markers.png --size 40x30 $markers
    [ -s markers.png ] || fail "no picture with $markers"
done
expect 0 '' --capture markers.png --lines lines.txt --needles n.json
expect 2 'scenepane: --capture draws no free points and needs at least one other file (see scenepane --help)' \
    --capture markers.png --points points.xyz
expect 0 'scenepane: points.xyz: the capture is fitted to these free points, but shows none' \
    --capture markers.png --points points.xyz steps.ply
expect 0 '' --info points.xyz
printf '0 0 0\n6 0\n' >bad.txt
expect 1 'scenepane: none.xyz: there is no such file: check its name and its folder
scenepane: bad.txt: line 2: 2 numbers, not x y z as in the lines before' \
    --screenshot markers.png --size 40x30 --points none.xyz --lines bad.txt --lines lines.txt
[ -s markers.png ] || fail 'the picture of the good file is missing'
expect 2 'scenepane: --lines has no meaning with --pick (see scenepane --help)' --pick 1,1 --lines lines.txt steps.ply
# Clipping. One rectangle at the height 0, one at 3, four vertices each: the plane is at their mean.
expect 0 '' --screenshot whole.png --size 40x30 steps.ply
expect 0 '' --screenshot clipped.png --size 40x30 --clip 0,0,1,0,0,1 steps.ply
cmp -s whole.png clipped.png && fail 'the plane clipped nothing'
expect 0 '' --screenshot auto.png --size 40x30 --clip-auto steps.ply
cmp -s clipped.png auto.png || fail 'the plane at the data is not between the rectangles'
expect 0 '' --info --clip-auto --json steps.ply
holds '"clip":{"found":true,"height":1.5,"rule":"all points","center":[3,1,1.5],"normal":[0,0,1]}}'
expect 0 '' --info --clip-auto steps.ply
[ "$(tail -n 5 out.txt)" = 'clip plane
  height         1.5
  rule           all points
  center         3 1 1.5
  normal         0 0 1' ] || fail "the text does not end with the plane:
$(cat out.txt)"
no_height='scenepane: no clip height was found, the plane is at -20'
expect 1 "scenepane: none.ply: there is no such file: check its name and its folder
$no_height" --info --clip-auto --json none.ply
holds '"clip":{"found":false,"height":-20,"center":[0,0,-20],"normal":[0,0,1]}}'
rm -f lines.png
expect 1 "$no_height" --screenshot lines.png --size 40x30 --clip-auto --lines lines.txt
[ -s lines.png ] || fail 'the picture with the plane at -20 is missing'
# All vertices at one height: the library refuses the estimate.
refusal='no clip height: an invalid argument was passed to an interface method'
expect 1 "scenepane: $refusal" --info --clip-auto mesh.ply
holds '  triangles      1'
echo older >kept.png
expect 1 "scenepane: kept.png: not written, $refusal" --screenshot kept.png --clip-auto mesh.ply
[ "$(cat kept.png)" = older ] || fail 'a picture without the plane replaced an older one'
expect 2 'scenepane: --clip takes CX,CY,CZ,NX,NY,NZ, six finite numbers with a normal other than 0,0,0, not "0,0,1e39,0,0,1" (see scenepane --help)' \
    --screenshot clipped.png --clip 0,0,1e39,0,0,1 steps.ply
expect 2 'scenepane: --clip goes with --screenshot, --save-cuts and --cut only (see scenepane --help)' --capture a.png --clip 0,0,1,0,0,1 steps.ply
expect 2 'scenepane: --clip-auto goes with --screenshot, --info, --save-cuts and --cut only (see scenepane --help)' --clip-auto steps.ply
expect 2 'scenepane: --clip and --clip-auto do not go together (see scenepane --help)' \
    --screenshot a.png --clip 0,0,1,0,0,1 --clip-auto steps.ply
# Lassos over the same picture: the rectangle at the height 3 is at 450,250 to 650,450, the one at 0 at 50,250 to 650,450.
left='visible:0.05,0.05;0.5,0.05;0.5,0.95;0.05,0.95'
right='inside:0.6,0.05;0.95,0.05;0.95,0.95;0.6,0.95'
beside='freehand-inside:0.05,0.05;0.9,0.05;0.9,0.2'
expect 0 '' --info --json --size 700x700 --cut "$left" steps.ply
holds '"vertices": 4, "triangles": 2, "box": [4, 6, 0, 2, 2.99, 3.01]'
holds '"cuts":[{"mode":"visible","changed":true}]'
expect 0 '' --info --cut="$beside" --size 700x700 --view 4 steps.ply --cut "$right"
[ "$(tail -n 3 out.txt)" = 'cuts
  freehand-inside  changed nothing
  inside           changed an object' ] || fail "the text does not end with the lassos:
$(cat out.txt)"
no_cut='scenepane: no lasso has changed an object'
expect 1 "$no_cut" --info --json --size 700x700 --cut "$beside" steps.ply
holds '"vertices": 8, '
holds '"cuts":[{"mode":"freehand-inside","changed":false}]'
expect 0 '' --screenshot cut.png --size 40x30 --cut "$left" steps.ply
cmp -s whole.png cut.png && fail 'the lasso cut nothing'
expect 1 "$no_cut" --screenshot uncut.png --size 40x30 --cut "$beside" steps.ply
cmp -s whole.png uncut.png || fail 'a lasso beside the mesh changed the picture'
for to in stl hps ply; do
    expect 0 '' --export "part.$to" --size 700x700 --cut "$left" steps.ply
    expect 0 '' --info --json "part.$to"
    holds '"triangles": 2, "box": [4, 6, 0, 2, '
done
expect 1 "$no_cut
scenepane: never.stl: not written, no lasso has changed an object" --export never.stl --cut "$beside" steps.ply
[ -e never.stl ] && fail 'an export without a cut was written'
expect 1 '' --save-cuts --size 700x700 --cut "$left" steps.ply
[ "$(cat out.txt)" = 'steps.ply: skipped, only pcm files can hold cuts' ] || fail "wrong line: $(cat out.txt)"
expect 2 'scenepane: --cut goes with --screenshot, --info, --save-cuts and --export only (see scenepane --help)' \
    --cut "$left" steps.ply
modes='MODE:X,Y;X,Y;... with the mode inside, outside, visible, freehand-inside, freehand-outside or freehand-visible'
# What a shell leaves of an argument that is not quoted.
expect 2 "scenepane: --cut takes $modes: a polygon needs at least two points (see scenepane --help)" \
    --info steps.ply --cut inside:0.2,0.2
expect 2 "scenepane: --cut takes $modes: point 2 is \"0.8\" and not X,Y, two finite numbers (see scenepane --help)" \
    --info steps.ply --cut 'inside:0.2,0.2;0.8;0.2'
expect 2 'scenepane: --save-cuts needs --cut, --clip or --clip-auto (see scenepane --help)' --save-cuts steps.ply
expect 2 'scenepane: --export writes one object and needs one file to read (see scenepane --help)' \
    --export a.stl --cut "$left" steps.ply mesh.ply
cp square.xdt other.xdt
# Alignment of four points by a shift, and where the files are after it.
printf '0 0 0 1 2 3\n1 0 0 2 2 3 # a corner\n\n0 1 0 1 3 3\n1 1 0 2 3 3\n' >pairs.txt
expect 0 '' --align pairs.txt --json --moving square.xdt --fixed mesh.ply steps.ply --save-transforms poses.json
grep -qE '^\{"transform":\[[^] ]*\],"residuals":\[[^] ]*\],"rms":[^] ]*\}$' out.txt || fail "wrong JSON: $(cat out.txt)"
expect 0 '' --info --json --transforms poses.json square.xdt mesh.ply steps.ply
holds '"box": [1, 2, 2, 3, 2.99, 3.01]'
holds '"transform": [1, 0, 0, 1, 0, 1, 0, 2, 0, 0, 1, 3, 0, 0, 0, 1]'
expect 0 '' --align pairs.txt --fixed mesh.ply --moving square.xdt
[ "$(cut -d' ' -f1 out.txt | tr -s '\n' ' ')" = 'transform residual residual residual residual rms ' ] ||
    fail "wrong text: $(cat out.txt)"
expect 0 '' --convert --transforms poses.json square.xdt moved.stl
expect 0 '' --info --json moved.stl
holds '"box": [1, 2, 2, 3, 2.99, 3.01]'
expect 0 'scenepane: poses.json: no transform for other.xdt; not used: square.xdt, mesh.ply' \
    --screenshot placed.png --size 40x30 --transforms poses.json steps.ply other.xdt
printf '0 0 0 1 2 3\n0 0 0 2 2 3\n' >same.txt
echo older >kept.json
expect 1 'scenepane: same.txt: no transform was found; the points of each side must not be all the same' \
    --align same.txt --save-transforms kept.json --moving square.xdt --fixed mesh.ply
[ -s out.txt ] && fail 'a failed alignment printed a result'
[ "$(cat kept.json)" = older ] || fail 'a failed alignment replaced an older file'
printf '0 0 0 1 2 3\n' >single.txt
expect 1 'scenepane: single.txt: a single pair needs twelve numbers: moving point, its normal, fixed point, its normal' \
    --align single.txt --moving square.xdt --fixed mesh.ply
printf '0 0 0 1 2 3\n0 0 0 1 2 x\n' >word.txt
expect 1 'scenepane: word.txt: line 2: "x" is not a number' --align word.txt --moving square.xdt --fixed mesh.ply
expect 1 'scenepane: none.txt: cannot be opened: No such file or directory' --align none.txt --moving square.xdt --fixed mesh.ply
expect 1 'scenepane: poses.json: holds no transform for any of the files' --info --transforms poses.json other.xdt
[ -s out.txt ] && fail 'files that were not placed were reported'
printf '{"scans": [{"file": "square.xdt", "transform": [2]}]}' >bad.json
expect 1 'scenepane: bad.json: entry 1: key "transform": not 16 numbers' --screenshot never.png --transforms bad.json square.xdt
[ -e never.png ] && fail 'a picture without the transforms was written'
expect 2 'scenepane: --align needs at least one file after --fixed (see scenepane --help)' --align pairs.txt --moving square.xdt mesh.ply
expect 2 'scenepane: --moving goes with --align only (see scenepane --help)' --info --moving square.xdt
for to in stl hps ply; do
    expect 0 '' --convert mesh.ply "out.$to"
    expect 0 '' --info --json "out.$to"
    holds '"vertices": 3, "triangles": 1, "box": [0, 1, 0, 2.5, '
done
expect 0 '' --convert square.xdt scan.stl
[ "$(od -An -tu4 -j80 -N4 scan.stl | tr -d ' ')" = 2 ] || fail 'the converted scan has not two triangles'
expect 0 '' --screenshot mesh.png out.hps
expect 1 'scenepane: none.ply: there is no such file: check its name and its folder' --convert none.ply never.stl
printf 'ply\nformat ascii 1.0\n' >short.ply
expect 1 "$("$scenepane" --info short.ply 2>&1 >out.txt)" --convert short.ply never.stl
grep -qF 'scenepane: short.ply: ' err.txt || fail 'the short file is not named'
[ -e never.stl ] && fail 'a conversion of nothing was written'
expect 2 'scenepane: a.obj: only ply, stl and hps files can be written (see scenepane --help)' --convert mesh.ply a.obj
expect 2 'scenepane: --convert needs two files, the one to read and the one to write (see scenepane --help)' \
    --convert mesh.ply
"$scenepane" --convert mesh.ply no/a.ply 2>err.txt && fail 'a conversion into a folder that is not there was not reported'
grep -q '^scenepane: no/a.ply: not written: .' err.txt || fail "wrong message: $(cat err.txt)"
expect 1 'scenepane: there is no display (DISPLAY is not set); --screenshot, --capture, --pick, --info, --save-cuts, --export, --align and --convert need none' square.xdt
expect 1 'scenepane: none.ply: there is no such file: check its name and its folder
scenepane: none.txt: there is no such file: check its name and its folder
scenepane: none.json: there is no such file: check its name and its folder
scenepane: there is no display (DISPLAY is not set); --screenshot, --capture, --pick, --info, --save-cuts, --export, --align and --convert need none' \
    points.xyz none.ply --points points.xyz --lines none.txt --transforms none.json
# The window system that is there decides, not the one that a variable names.
needs_none='; --screenshot, --capture, --pick, --info, --save-cuts, --export, --align and --convert need none'
no_x='scenepane: there is no X display (DISPLAY is not set): under Wayland the window needs Xwayland'
WAYLAND_DISPLAY=wayland-7 expect 1 "$no_x$needs_none" .
WAYLAND_DISPLAY=wayland-7 QT_QPA_PLATFORM=wayland expect 1 "$no_x$needs_none" square.xdt
QT_QPA_PLATFORM=xcb expect 1 "scenepane: there is no display (DISPLAY is not set)$needs_none" square.xdt
printf 'none.ply\n' >names.txt
expect 1 "scenepane: @none.txt: there is no such file: check its name and its folder
scenepane: none.ply: there is no such file: check its name and its folder
scenepane: there is no display (DISPLAY is not set)$needs_none" @names.txt @none.txt
long_name=$(printf 'a%.0s' $(seq 300)).pcm
expect 1 "scenepane: $long_name: File name too long
scenepane: there is no display (DISPLAY is not set)$needs_none" "$long_name"
DISPLAY=:4095 QT_QPA_PLATFORM='wayland;xcb' expect 1 "scenepane: the display :4095 cannot be opened$needs_none" square.xdt
# Platforms that the user asks for on purpose: the window stays, and its files are not opened.
for platform in offscreen minimal Offscreen 'minimal:enable_fonts'; do
    QT_QPA_PLATFORM=$platform XDG_CONFIG_HOME=$folder "$scenepane" square.xdt >out.txt 2>err.txt &
    program=$!
    for _ in $(seq 600); do
        grep -qx 'scenepane: square.xdt: not opened, there is no viewer' err.txt && break
        kill -0 "$program" 2>kill.txt || break
        sleep 0.1
    done
    kill "$program" 2>kill.txt
    wait "$program" 2>kill.txt
    got=$?
    [ "$got" = 143 ] || fail "the window on $platform ended with status $got: $(cat err.txt)"
    grep -qx 'scenepane: square.xdt: not opened, there is no viewer' err.txt || fail "wrong line: $(cat err.txt)"
done
expect 2 'scenepane: --reset-settings has no meaning with --info (see scenepane --help)' --info --reset-settings square.xdt
# Every result that is printed: a full disk is exit status 1 and a reason.
full() {
    "$scenepane" "$@" >/dev/full 2>err.txt
    local got=$?
    if [ "$got" != 1 ] || [ "$(cat err.txt)" != 'scenepane: standard output: No space left on device' ]; then
        fail "scenepane $* with a full standard output: status $got; standard error: $(cat err.txt)"
    fi
}
full --help
full --version
full --version --verbose
full --info square.xdt
full --info --json square.xdt
full --info --clip-auto steps.ply
full --info --size 700x700 --cut "$left" steps.ply
full --save-cuts --size 700x700 --cut "$left" steps.ply
full --pick 250,350 --size 700x700 steps.ply
full --pick 250,350 --size 700x700 --json steps.ply
full --align pairs.txt --moving square.xdt --fixed mesh.ply
full --align pairs.txt --json --moving square.xdt --fixed mesh.ply
"$scenepane" --help >&- 2>err.txt && fail 'a closed standard output was not reported'
grep -qx 'scenepane: standard output is closed' err.txt || fail "wrong reason: $(cat err.txt)"
# The files that a run opens must not get what it prints.
for run in '--info' '--screenshot - --size 32x32'; do
    # shellcheck disable=SC2086
    "$scenepane" $run square.xdt >&- 2>err.txt && fail "a closed standard output was not reported with $run"
    grep -qx 'scenepane: standard output is closed' err.txt || fail "wrong reason of $run: $(cat err.txt)"
done
# A list in a pipe is read once, also where it is also looked at for files that must not be overwritten.
printf 'square.xdt\n' | "$scenepane" --screenshot piped.png --size 32x32 @/dev/stdin 2>err.txt
[ "${PIPESTATUS[1]} $(cat err.txt)" = '0 ' ] || fail "a list in a pipe: $(cat err.txt)"
[ -s piped.png ] || fail 'no picture of a list in a pipe'

[ "$failures" = 0 ]

#!/ bin / bash
#The program as scripts see it : exit status, the lines on standard error, what reaches standard output.
set - u scenepane = $1 folder = $(mktemp - d) trap 'rm -rf "$folder"' EXIT cd "$folder" ||
                                exit 1 unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM failures = 0
#expect STATUS STDERR ARGUMENTS... : the exact standard error, without its last line feed
    expect() {
    local status=$1 stderr=$2
    shift 2
    "$scenepane" "$@" >out.txt 2>err.txt
    local got=$?
    if [ "$got" != "$status" ] || [ "$(cat err.txt)" != "$stderr" ];
    then
        printf 'scenepane %s\n  status %s, not %s\n  stderr "%s"\n     not "%s"\n' "$*" "$got" "$status" "$(cat err.txt)" "$stderr"
        failures=$((failures + 1))
    fi
}
#holds TEXT : standard output has it
holds() {
    if
        !grep - qF-- "$1" out.txt;
    then printf 'standard output has no "%s":\n' "$1" cat out.txt failures = $((failures + 1)) fi
}

# 2 x 2 points in micrometres : (0, 0, 0), (1000, 0, 0), (0, 1000, 0), (1000, 1000, 0)
zero = '\0\0\0\0' thousand =
    '\0\0\x7a\x44' printf "\2\0\2\0$zero$zero$zero$thousand$zero$zero$zero$thousand$zero$thousand$thousand$zero" >
        square.xdt cp square.xdt-- "$(printf -- '-odd\377.xdt')"

        expect 0 '' --version["$(cat out.txt)" = 'scenepane 5.5.0'] ||
{
    echo 'wrong version';
    failures = $((failures + 1));
}
expect 0 '' --help
holds 'Usage: scenepane [options] FILE...'
expect 2 'scenepane: unknown option --what (scenepane --help tells more)' --what
expect 2 'scenepane: --view takes a whole number from 0 to 7, not "8" (scenepane --help tells more)' --view 8
expect 2 'scenepane: --info needs at least one file (scenepane --help tells more)' --info
expect 1 'scenepane: none.pcm: No such file or directory
scenepane: .: Is a directory' --info none.pcm .
expect 0 '' --info square.xdt
holds '  triangles      2'
expect 0 '' --info --json square.xdt
holds '"box": [0, 1, 0, 1, -0.01, 0.01]'
expect 0 '' --info --json -- "$(printf -- '-odd\377.xdt')"
holds '"file": "-odd\udcff.xdt"'
expect 0 '' --screenshot square.png --size 40x30 square.xdt
[ "$(head -c 4 square.png | tail -c 3)" = PNG ] || {
    echo 'no PNG file';
    failures = $((failures + 1));
}
cp square.xdt square
        .stl expect 1 'scenepane: square.stl: unknown file type' --info-- json-- skip 1 --confidence 0.5 --color ff0000
            square.xdt square
        .stl
            holds '"color": "FF0000"' expect 1 'scenepane: there is no display (DISPLAY is not set); --screenshot and --info need none' square
        .xdt "$scenepane" --info square.xdt > / dev / full 2 >
    / dev / null&& {
    echo 'a full disk went unnoticed';
    failures = $((failures + 1));
}

["$failures" = 0] || {
    echo "$failures failures";
    exit 1;
}

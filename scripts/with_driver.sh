#!/usr/bin/env bash
# Runs a command on one of Mesa's drivers that need no graphics card:
#   scripts/with_driver.sh DRIVER COMMAND...       DRIVER: llvmpipe, softpipe, zink (over lavapipe) or virgl
# For virgl it starts a server of its own on a socket of its own and ends it with the command. KV_VIRGL_PRELOAD names the
# library that connects Mesa to that socket (lib/libkv_virgl_socket.so of a build folder).
# Exit status: that of the command; 77 when the driver is not installed, or 1 with KV_REQUIRE_DRIVERS=ON.
set -euo pipefail

missing() {
    echo "$(basename "$0"): $1" >&2
    [[ "${KV_REQUIRE_DRIVERS:-OFF}" == ON ]] && exit 1
    exit 77
}

# The folder of Mesa's drivers, for the architecture of this machine.
has_mesa_driver() { compgen -G "/usr/lib*/*/dri/$1" >/dev/null || compgen -G "/usr/lib*/dri/$1" >/dev/null; }

if (($# < 2)); then
    sed -n '2,/^set /s/^# \?//p' "$0" >&2
    exit 2
fi
driver="$1"
shift

server=
work="$(mktemp -d)"
clean_up() {
    if [[ -n "$server" ]]; then
        kill "$server" 2>/dev/null || true
        wait "$server" 2>/dev/null || true
    fi
    rm -rf "$work"
}
trap clean_up EXIT
trap 'exit 143' TERM INT

# The driver alone decides, whatever the caller's environment has.
unset MESA_LOADER_DRIVER_OVERRIDE GALLIUM_DRIVER VK_DRIVER_FILES VK_ICD_FILENAMES
export LIBGL_ALWAYS_SOFTWARE=1
case "$driver" in
    llvmpipe | softpipe)
        has_mesa_driver swrast_dri.so || missing "$driver is not installed (libgl1-mesa-dri)"
        export GALLIUM_DRIVER="$driver"
        ;;
    zink)
        lavapipe="$(compgen -G '/usr/share/vulkan/icd.d/lvp_icd*.json' | head -1 || true)"
        [[ -n "$lavapipe" ]] || missing "zink has no lavapipe (mesa-vulkan-drivers)"
        # Not by GALLIUM_DRIVER, with which windows stay black.
        export MESA_LOADER_DRIVER_OVERRIDE=zink VK_DRIVER_FILES="$lavapipe" VK_ICD_FILENAMES="$lavapipe" XDG_RUNTIME_DIR="$work"
        ;;
    virgl)
        preload="${KV_VIRGL_PRELOAD:-}"
        command -v virgl_test_server >/dev/null || missing "virgl has no server (virgl-server)"
        if [[ ! -f "${preload##*:}" ]]; then
            echo "$(basename "$0"): KV_VIRGL_PRELOAD names no library" >&2
            exit 1
        fi
        # With this script even when it is killed.
        GALLIUM_DRIVER=llvmpipe setpriv --pdeathsig KILL \
            virgl_test_server --use-egl-surfaceless --socket-path="$work/virgl" >"$work/log" 2>&1 &
        server=$!
        for ((i = 0; i < 300; ++i)); do
            [[ -S "$work/virgl" ]] && break
            kill -0 "$server" 2>/dev/null || break
            sleep 0.1
        done
        if [[ ! -S "$work/virgl" ]]; then
            echo "$(basename "$0"): the virgl server does not start:" >&2
            cat "$work/log" >&2
            exit 1
        fi
        export GALLIUM_DRIVER=virpipe KV_VIRGL_SOCKET="$work/virgl" LD_PRELOAD="$preload"
        ;;
    *)
        echo "$(basename "$0"): there is no driver '$driver': llvmpipe, softpipe, zink, virgl" >&2
        exit 2
        ;;
esac

# Not exec: the server and the folder go after the command. In the background, so that a signal is handled at once.
"$@" &
command=$!
trap 'kill "$command" 2>/dev/null; exit 143' TERM INT
wait "$command"

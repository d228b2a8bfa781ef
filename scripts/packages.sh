#!/usr/bin/env bash
# Builds the Debian packages into build/packages, and installs and runs them on a bare system: packages.sh [options]
#
# The bare system is a chroot that debootstrap makes, which needs root and the network. Where there is none the script
# says so, and checks the packages by lintian and by the libraries that dpkg-shlibdeps has found. Not part of ./test.sh.
#   --build FOLDER   the packages of this build folder, which is not built
#   --chroot FOLDER  a bare system that exists already; it is changed and kept
set -euo pipefail
. "$(dirname "$0")/setup.sh"

suite=bookworm mirror="${KV_DEBIAN_MIRROR:-http://deb.debian.org/debian}"
build="" chroot=""
while (($# > 0)); do
    case $1 in
        --build) build="$(realpath "$2")" ;;
        --chroot) chroot="$(realpath "$2")" ;;
        *) complain "unknown option $1" && exit 2 ;;
    esac
    shift 2
done

if [[ -z $build ]]; then
    install_missing "${KV_BUILD_PACKAGES[@]}"
    build="$KV_ROOT/build/packages"
    # For /usr, so that libraries go into the folder of the architecture.
    cmake -S "$KV_ROOT" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr -DKV_BUILD_TESTS=OFF \
        -DKV_BUILD_BENCH=OFF -DKV_BUILD_EXAMPLES=OFF -DKV_BUILD_BINDINGS=OFF
    cmake --build "$build"
fi

out="$KV_ROOT/build/debian"
rm -rf "$out"
say "making packages of $build"
cpack --config "$build/CPackConfig.cmake" -G DEB -B "$out" >"$build/cpack.log" || { tail -20 "$build/cpack.log" && exit 1; }
packages=("$out"/*.deb)
printf '%s\n' "${packages[@]}"
for package in "${packages[@]}"; do
    [[ -n $(dpkg-deb -f "$package" Depends) ]] || { complain "$package depends on nothing" && exit 1; }
done

scratch="$(mktemp -d)"
trap 'umount -q "$scratch/system/proc" "${chroot:-$scratch/none}/proc" 2>/dev/null || true; rm -rf --one-file-system "$scratch"' EXIT
if [[ -z $chroot ]]; then
    chroot="$scratch/system"
    if [[ $(id -u) -ne 0 ]] || ! install_missing debootstrap ||
        ! debootstrap --variant=minbase "$suite" "$chroot" "$mirror" >"$scratch/log" 2>&1; then
        say "no bare system can be made here ($(tail -1 "$scratch/log" 2>/dev/null || echo "needs root and debootstrap"))"
        install_missing lintian
        say "lintian instead; an installation is NOT tested"
        # The address of a site is not known here: KV_MAINTAINER of the CMake cache sets it.
        lintian --fail-on error --suppress-tags bogus-mail-host,bogus-mail-host-in-debian-changelog "${packages[@]}"
        exit
    fi
fi

inside() { chroot "$chroot" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LANG=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"; }
say "installing on a bare $suite"
mkdir -p "$chroot/packages"
cp "${packages[@]}" "$chroot/packages"
mountpoint -q "$chroot/proc" || mount -t proc proc "$chroot/proc"
inside apt-get update -qq
inside sh -c 'apt-get install -y -qq --no-install-recommends /packages/*.deb libgl1-mesa-dri fonts-liberation' >"$scratch/apt" 2>&1 ||
    { tail -20 "$scratch/apt" && exit 1; }

say "running the programs"
inside sh -euc '
    cd /root
    simulate-scans --out scans --scans 2 --size 160x120
    first=$(ls scans/*.pcm | head -1)
    scenepane --version
    scenepane --info "$first"
    scenepane --convert "$first" part.ply
    scenepane --screenshot part.png part.ply
    printf "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n" >triangle.obj
    scenepane --info triangle.obj
    test "$(head -c 4 part.png | tail -c 3)" = PNG'
say "opening the window"
inside sh -c 'apt-get install -y -qq --no-install-recommends xvfb xauth desktop-file-utils shared-mime-info' >"$scratch/apt" 2>&1 ||
    { tail -20 "$scratch/apt" && exit 1; }
# It runs until it is ended.
inside sh -c 'cd /root && timeout 20 xvfb-run -a scenepane part.ply' >"$scratch/window" 2>&1 && status=0 || status=$?
((status == 124)) || { complain "the window ended with $status" && cat "$scratch/window" && exit 1; }
inside desktop-file-validate /usr/share/applications/scenepane.desktop
inside grep -q 'x-kv-pcm:\*.pcm' /usr/share/mime/globs
say "compiling a program in C against the package"
inside sh -c 'apt-get install -y -qq --no-install-recommends gcc libc6-dev pkg-config' >"$scratch/apt" 2>&1 ||
    { tail -20 "$scratch/apt" && exit 1; }
inside sh -euc '
    cd /root
    cc $(pkg-config --cflags KV_ScenePane) /usr/share/doc/KV_ScenePane/examples/c_host.c $(pkg-config --libs KV_ScenePane) -o c_host
    ./c_host "$(ls scans/*.pcm | head -1)" c_host.ppm >/dev/null
    test -s c_host.ppm'
say "removing them"
inside sh -c 'dpkg --purge scenepane libkv-scenepane-dev libkv-scenepane5' >/dev/null
[[ -z $(inside sh -c 'find / -xdev -path /proc -prune -o -path /packages -prune -o -name "*scenepane*" -print | grep -v "^/root/\|^/var/\(cache\|log\)"') ]] ||
    { complain "the packages leave files" && exit 1; }
say "the packages install, run and leave nothing"

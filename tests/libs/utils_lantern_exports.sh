#!/bin/sh
# Usage: utils_lantern_exports.sh libKV_UtilsLantern.so
# The library exports its one routine and nothing else.
export LC_ALL=C
got=$(nm -D --defined-only -C "$1" | cut -d' ' -f3- | sort -u)
want=LANDLL_PickPointMatching
[ "$got" = "$want" ] && exit 0
printf 'exported:\n%s\nwanted:\n%s\n' "$got" "$want" >&2
exit 1

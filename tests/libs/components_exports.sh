#!/bin/sh
# Usage: components_exports.sh libKV_Components.so
# The library exports its three entries and nothing else.
export LC_ALL=C
got=$(nm -D --defined-only -C "$1" | cut -d' ' -f3- | sort -u)
want=$(sort -u <<'END'
KV_Components_Ordinal1
KV_Components_Ordinal2
KV_Components_Ordinal3
END
)
[ "$got" = "$want" ] && exit 0
printf 'exported:\n%s\nwanted:\n%s\n' "$got" "$want" >&2
exit 1

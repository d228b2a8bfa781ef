#!/bin/sh
# Usage: msrdll_exports.sh libMSRDLL.so
# The library exports the operations of class MSR that its callers know, MsrLastReason(), and nothing else.
export LC_ALL=C
got=$(nm -D --defined-only -C "$1" | cut -d' ' -f3- | sort -u)
want=$(sort -u <<'END'
MsrStorage::MSR::GetColorData()
MsrStorage::MSR::GetConfidence()
MsrStorage::MSR::GetHeight()
MsrStorage::MSR::GetPixelClassification()
MsrStorage::MSR::GetTrafo()
MsrStorage::MSR::GetWidth()
MsrStorage::MSR::GetXYZ()
MsrStorage::MSR::Load(wchar_t const*, bool, bool, bool)
MsrStorage::MSR::MSR()
MsrStorage::MSR::Save(wchar_t const*, bool, bool)
MsrStorage::MSR::SaveTrafoMatrix(wchar_t const*, float const*)
MsrStorage::MSR::~MSR()
MsrLastReason
END
)
[ "$got" = "$want" ] && exit 0
printf 'exported:\n%s\nwanted:\n%s\n' "$got" "$want" >&2
exit 1

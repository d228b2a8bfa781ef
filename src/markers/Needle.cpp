// The list of needles: look-up, selection, the head under a point, the next free id.
#include "markers/Needle.h"

#include <algorithm>
#include <cmath>
#include <limits>

Needle MakeNeedle(std::int32_t id, const Float3& pin, const Float3& head, const NeedleRenderParameters& look) {
    return {.id = id,
            .pin = pin,
            .head = head,
            .headRadius = look.headRadius,
            .headColor = look.headColor,
            .pinSize = look.pinSize,
            .pinColor = look.pinColor,
            .hitPointRadius = look.hitPointRadius,
            .hitPointColor = look.hitPointColor,
            .headSelectionColor = look.headSelectionColor};
}

Needle* FindNeedle(std::vector<Needle>& needles, std::int32_t id) {
    const auto found = std::ranges::find(needles, id, &Needle::id);
    return found == needles.end() ? nullptr : &*found;
}

std::vector<std::int32_t> SelectedNeedleIds(const std::vector<Needle>& needles) {
    std::vector<std::int32_t> ids;
    for (const Needle& needle : needles)
        if (needle.selected) ids.push_back(needle.id);
    return ids;
}

// The margin lets a click at the rim of the head hit it.
bool IsOnHead(const Needle& needle, const Float3& point) {
    constexpr double kMargin = 0.1;  // scene units
    const Double3 offset = ToDouble3(point) - ToDouble3(needle.head);
    const double radius = needle.headRadius + kMargin;
    return std::isfinite(radius) && Dot(offset, offset) <= radius * radius;
}

std::int32_t NextNeedleId(const std::vector<Needle>& needles) {
    if (needles.empty()) return 1;
    std::vector<std::int32_t> ids(needles.size());
    std::ranges::transform(needles, ids.begin(), &Needle::id);
    std::ranges::sort(ids);
    // The end of the first run of consecutive ids, from its start on. In 64 bits: the successor may have no int.
    const auto endsARun = [](std::int64_t id, std::int64_t next) { return next != id + 1; };
    const auto last = std::ranges::adjacent_find(ids, endsARun);
    const std::int32_t end = last == ids.end() ? ids.back() : *last;
    if (end < std::numeric_limits<std::int32_t>::max()) return end + 1;
    // The run reaches the largest number, so it is the only one.
    std::int32_t smallestFree = 1;
    for (const std::int32_t id : ids)
        if (id == smallestFree) ++smallestFree;
    return smallestFree;
}

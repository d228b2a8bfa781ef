// A needle: a straight pin from a point on the surface to a spherical head; the number of the needle is drawn next to
// it.
#pragma once
#include <cstdint>
#include <vector>

#include "geometry/Vector3.h"

/// The look of needles that are made from now on. Lengths and radii in world units, colours 0x00BBGGRR.
struct NeedleRenderParameters {
    float needleLength = 10.0f;  ///< from pin to head, of needles that the mouse makes
    float headRadius = 1.0f;
    std::uint32_t headColor = 0xFF;
    float pinSize = 0.33f;  ///< radius of the pin at the head
    std::uint32_t pinColor = 0x505050;
    float hitPointRadius = 0.25f;  ///< of the ball at the surface; none when it is not above 0
    std::uint32_t hitPointColor = 0xFF0000;
    std::uint32_t headSelectionColor = 0;
};

/// Positions are in the world frame and may be infinite or NaN. The look is as in NeedleRenderParameters.
struct Needle {
    std::int32_t id = 0;  ///< differs from those of all other needles
    Float3 pin{};         ///< the end on the surface
    Float3 head{};        ///< centre of the head
    float headRadius = 0.0f;
    std::uint32_t headColor = 0;
    float pinSize = 0.0f;
    std::uint32_t pinColor = 0;
    float hitPointRadius = 0.0f;
    std::uint32_t hitPointColor = 0;
    std::uint32_t headSelectionColor = 0;
    bool selected = false;
};

/// A needle that is not selected.
[[nodiscard]] Needle MakeNeedle(std::int32_t id, const Float3& pin, const Float3& head,
                                const NeedleRenderParameters& look);

/// The needle with this id, or null. Valid until the list changes, as it may in any event.
[[nodiscard]] Needle* FindNeedle(std::vector<Needle>& needles, std::int32_t id);

/// The ids of the selected needles, in list order.
[[nodiscard]] std::vector<std::int32_t> SelectedNeedleIds(const std::vector<Needle>& needles);

/// Whether a point of the surface that the window shows counts as the head of a needle. False for a point or a head
/// that is not finite.
[[nodiscard]] bool IsOnHead(const Needle& needle, const Float3& point);

/// The id for a needle that the mouse makes: the number after the first id, in ascending order, whose successor is
/// free. 1 for an empty list. When that would exceed 2147483647: the smallest free positive number.
[[nodiscard]] std::int32_t NextNeedleId(const std::vector<Needle>& needles);

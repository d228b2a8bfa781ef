// The colours that the host gives to objects whose files have none.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "SceneReport.h"

/// What the viewer gives to meshes, 0x00BBGGRR: none was chosen.
inline constexpr std::int32_t kUncolored = 0xFFFFFF;
/// 0x00BBGGRR, for meshes. Light adds to an object's colour: of a white one, all that faces the viewer is pure white.
inline constexpr std::int32_t kMeshColor = 0xCCCCCC;

inline constexpr std::size_t kPaletteSize = 12;
/// Colours for telling objects apart, 0x00BBGGRR: the fewer of them are in use, from the first one, the more they
/// differ.
///
/// Each is the colour with the largest distance to its predecessors, to the viewer's background, to black and to white,
/// among those with channels of 16 to 216 in steps of 8 (brighter ones clip under light), a lightness of 48 to 82 and a
/// chroma of at least 30; the first one is given. The distance is that of CIEDE2000, or twice that of the colours as
/// seen without the red or the green cones (matrices of Machado, Oliveira and Fernandes, 2009), whichever is smaller.
/// It is at least 15 between any two.
inline constexpr std::array<std::int32_t, kPaletteSize> kPalette = {
    0xD89840, 0x1040D8, 0x70A010, 0x9018D8, 0x10B0D8, 0xD8D030,
    0x88D8B0, 0xA890D8, 0xD06078, 0x487098, 0x489890, 0xA8D850,
};
/// @param position  of any size: the palette repeats
[[nodiscard]] std::int32_t PaletteColor(std::size_t position);

/// Scans among the files of one import get a colour of the palette each: they are several, and nobody has chosen a
/// colour for scans.
/// @param isColorGiven  on the command line
[[nodiscard]] bool TellsScansApart(std::span<const std::string> files, std::int32_t scanColor, bool isColorGiven);

/// The object is of a mesh format, and its file says nothing about colours.
[[nodiscard]] bool IsPlainMesh(const ObjectReport& object);
/// The object is of a scan format and its points have no colours.
[[nodiscard]] bool IsPlainScan(const ObjectReport& object);

/// The colours in which objects are shown after their import into an empty scene, one per object: meshes that say
/// nothing about colours are gray, scans without colours get one of the palette each.
/// @param tellsApart  each scan gets its own colour; otherwise they keep the colour of the import
[[nodiscard]] std::vector<std::int32_t> ShownColors(std::span<const ObjectReport> objects, bool tellsApart);

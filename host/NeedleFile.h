// Needles of the viewer as a JSON file: docs/formats/needles.md.
#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "KV_ScenePane/_DKV_ScenePane.h"

/// Sizes and colours of a needle, as SetNeedleRenderParameters() has them. Starts as the viewer starts.
struct NeedleLook {
    float length = 10.0f;                   ///< scene units; for needles that the mouse creates, so not in files
    float headRadius = 1.0f;                ///< scene units
    std::int32_t headColor = 0x0000FF;      ///< 0x00BBGGRR, as all colours here
    float pinSize = 0.33f;                  ///< radius of the pin at the head, scene units
    std::int32_t pinColor = 0x505050;       //
    float hitPointRadius = 0.25f;           ///< scene units; 0 or less: none is drawn
    std::int32_t hitPointColor = 0xFF0000;  //
    std::int32_t headSelectionColor = 0;    ///< of the head while the needle is selected
    bool operator==(const NeedleLook&) const = default;
};

struct NeedleMark {
    std::int32_t id = 0;
    std::array<float, 3> pin{}, head{};  ///< world frame
    NeedleLook look;
    bool operator==(const NeedleMark&) const = default;
};

/// The limit of needles that a viewer starts with.
inline constexpr std::int32_t kStartNeedleLimit = 8;
/// A file with more is neither read nor written: the viewer compares each new id with all others.
inline constexpr std::size_t kMaxNeedlesInFile = 10'000;
/// Bytes. A larger file is refused before it is read.
inline constexpr std::size_t kMaxNeedleFileSize = 8 * 1024 * 1024;

/// Reads the content of a needle file.
/// @throws std::runtime_error with one line of text: the line of a text that is not JSON, otherwise the entry (from 1)
///         and the key
[[nodiscard]] std::vector<NeedleMark> ParseNeedles(std::string_view text);

/// Reads a whole needle file, which may have been damaged or written by anybody.
/// @param path    in bytes
/// @param marks   receives the needles in the order of the file; unchanged after a failure
/// @param reason  receives why it was refused, one line in English without the file's name; unchanged after a success
[[nodiscard]] bool ReadNeedleFile(const std::string& path, std::vector<NeedleMark>* marks, std::string* reason);

/// Replaces a file as a whole or not at all. Coordinates and sizes are read back as the same bits, colours without
/// their upper byte.
/// @param path    in bytes
/// @param reason  receives why nothing was written, in English; unchanged after a success. One reason is a number that
///                is not finite, which JSON cannot hold, another one a negative size, which would not be read
[[nodiscard]] bool WriteNeedleFile(const std::string& path, const std::vector<NeedleMark>& marks, std::string* reason);

/// Creates the needles with their own looks, without a frame for each of them. Neither picking nor drawing of needles
/// is switched.
/// @param look   for needles that are created later; set again afterwards, because the viewer has one look at a time
/// @param limit  the limit in force, which the viewer does not return; raised first, when it is too low for all
/// @return the ids that were in use already; those needles are as they were
[[nodiscard]] std::vector<std::int32_t> PlaceNeedles(KV_ScenePane::_DKV_ScenePane& methods,
                                                     const std::vector<NeedleMark>& marks, const NeedleLook& look,
                                                     std::int32_t* limit);

/// Passes the look to the viewer, for needles that are created later.
void SetNeedleLook(KV_ScenePane::_DKV_ScenePane& methods, const NeedleLook& look);

// Markers of files in a viewer: free points, 3D lines and needles, for the runs without a window and for the window.
#pragma once
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "KV_ScenePane/PointFiles.h"
#include "KV_ScenePane/_DKV_ScenePane.h"
#include "LineFile.h"
#include "NeedleFile.h"

/// Uploads a cloud as one set of free points. Asks for no repaint.
/// @param cloud  move it in: it grows by the colours that it lacks, and is freed before this returns
/// @param color  0x00BBGGRR, for a cloud without colours
/// @param alpha  0 to 1
/// @return the id of the set
/// @throws std::length_error for more points than the viewer counts; std::bad_alloc
std::int32_t AddPoints(KV_ScenePane::_DKV_ScenePane& methods, KV_ScenePane::PointCloud cloud, std::int32_t color,
                       float alpha);

/// As AddPoints(), but deletes the set again when graphics memory is short: the viewer would not draw it. Needs a
/// DebugRouter, without which such a set stays.
/// @throws std::runtime_error with the reason, too
std::int32_t AddDrawnPoints(KV_ScenePane::_DKV_ScenePane& methods, KV_ScenePane::PointCloud cloud, std::int32_t color,
                            float alpha);

/// Creates one line per polyline, with the smallest ids from 0 that no line has. Whether lines are drawn does not
/// change. Must not be called while paint events are blocked (PaintBlock.h).
/// @return the ids, in the order of the polylines
/// @throws std::length_error for a polyline of more points than the viewer counts; std::bad_alloc
std::vector<std::int32_t> AddLines(KV_ScenePane::_DKV_ScenePane& methods, std::span<const Polyline> polylines);

// One file each, read and added on the thread of the viewer. They return why the file, or a part of it, was not added:
// one line without the file's name, empty when all of it was. What is thrown on the way is such a reason, too.

/// As AddDrawnPoints().
[[nodiscard]] std::string AddPointFile(KV_ScenePane::_DKV_ScenePane& methods, const std::string& file,
                                       std::int32_t color, float alpha);
/// As AddLines(), with the drawing of lines switched on. @param polylines  receives those of the file
[[nodiscard]] std::string AddLineFile(KV_ScenePane::_DKV_ScenePane& methods, const std::string& file,
                                      std::vector<Polyline>* polylines);
/// As PlaceNeedles(), with the drawing of needles switched on. @param marks  receives those of the file
[[nodiscard]] std::string AddNeedleFile(KV_ScenePane::_DKV_ScenePane& methods, const std::string& file,
                                        const NeedleLook& look, std::int32_t* limit, std::vector<NeedleMark>* marks);

// What the automation surface does not return, for programs in C: pictures, picks, cuts, alignments, meshes, and stores
// of properties.
#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <string>

#include "KV_ScenePane/CutMask.h"
#include "KV_ScenePane/PathText.h"
#include "control/CInterfacePane.h"
#include "control/ScenePaneCtrl.h"
#include "control/ScenePaneHandle.h"

using KV_ScenePane::ScenePane;

namespace {

/// @return what a text function returns
std::size_t CopyText(std::string_view text, char* buffer, std::size_t capacity) {
    if (capacity > 0) {
        const std::size_t copied = text.copy(buffer, capacity - 1);  // a text without characters may have no address
        buffer[copied] = '\0';
    }
    return text.size();
}

/// Runs a function whose return value is not a status; @p failed where it throws or there is no viewer.
template <typename Result, typename Body>
Result ResultOf(kv_pane* pane, std::string_view function, Result failed, Body&& body) {
    Result result = failed;
    const kv_status status = CallViewer(pane, function, [&](ScenePane& viewer) {
        result = body(viewer);
        return KV_DONE;
    });
    return status == KV_DONE ? result : failed;
}

/// Runs a text function.
/// @param body  called with the viewer; returns the text, or nothing with kv_last_error() set
template <typename Body>
std::size_t TextOf(kv_pane* pane, std::string_view function, char* buffer, std::size_t capacity, Body&& body) {
    std::size_t size = KV_NO_TEXT;
    (void)CallViewer(pane, function, [&](ScenePane& viewer) {
        if (buffer == nullptr && capacity > 0) return RefuseNull(function, "the buffer is null");
        if (const std::optional<std::string> text = body(viewer)) size = CopyText(*text, buffer, capacity);
        return KV_DONE;
    });
    if (size == KV_NO_TEXT && buffer != nullptr) CopyText({}, buffer, capacity);
    return size;
}

kv_status RefuseCapacity(int width, int height, std::size_t capacity) {
    SetLastError("kv_capture_picture: the picture has " + std::to_string(width) + " x " + std::to_string(height) +
                 " pixels, there is room for " + std::to_string(capacity));
    return KV_BAD_ARGUMENTS;
}

std::size_t PixelCount(int width, int height) {
    return static_cast<std::size_t>(std::max(width, 0)) * static_cast<std::size_t>(std::max(height, 0));
}

kv_status RefuseEmptyArea(const WindowSize& size) {
    SetLastError("kv_capture_picture: the drawing area of " + std::to_string(size.width) + " x " +
                 std::to_string(size.height) + " pixels has none");
    return KV_FAILED;
}

kv_status CapturePicture(ScenePane& viewer, std::uint32_t* pixels, std::size_t capacity, std::int32_t* width,
                         std::int32_t* height) {
    CKV_ScenePaneCtrl& control = ControlOf(viewer);
    if (!control.MakeContextCurrent()) {
        SetLastError("kv_capture_picture: there is no window, or the viewer has no picture");
        return KV_FAILED;
    }
    const auto reportSize = [&](int columns, int rows) {
        if (width != nullptr) *width = columns;
        if (height != nullptr) *height = rows;
    };
    const WindowSize size = control.m_pWindow->ClientSize();
    if (PixelCount(size.width, size.height) == 0) return RefuseEmptyArea(size);
    if (pixels == nullptr || PixelCount(size.width, size.height) > capacity) {
        reportSize(size.width, size.height);
        return pixels == nullptr ? KV_DONE : RefuseCapacity(size.width, size.height, capacity);
    }
    KV_ScenePane::Picture picture;
    if (!viewer.CapturePicture(&picture)) {
        SetLastError("kv_capture_picture: no frame was drawn, painting is blocked or the window is gone");
        return KV_FAILED;
    }
    reportSize(picture.width, picture.height);
    // A callback inside the frame may have changed the size.
    if (picture.pixels.size() > capacity) return RefuseCapacity(picture.width, picture.height, capacity);
    std::ranges::copy(picture.pixels, pixels);
    return KV_DONE;
}

/// @return false with kv_last_error() for an index outside the list
bool ReadObjectInfo(ScenePane& viewer, std::int32_t index, std::string_view function, KV_ScenePane::ObjectInfo* info) {
    const bool isShort = index >= 0 && index <= std::numeric_limits<std::int16_t>::max();
    if (isShort && viewer.GetObjectInfo(static_cast<std::int16_t>(index), info)) return true;
    SetLastError(std::string(function) + ": there is no object " + std::to_string(index));
    return false;
}

/// Conversions of the plain structs; the C structs have the members of the C++ ones in the same order.
KV_ScenePane::AlignmentPair ToPair(const kv_alignment_pair& given) {
    KV_ScenePane::AlignmentPair pair;
    std::ranges::copy(given.moving, pair.moving.point);
    std::ranges::copy(given.moving_normal, pair.moving.normal);
    std::ranges::copy(given.fixed, pair.fixed.point);
    std::ranges::copy(given.fixed_normal, pair.fixed.normal);
    return pair;
}

kv_alignment_pair FromPair(const KV_ScenePane::AlignmentPair& pair) {
    kv_alignment_pair result;
    std::ranges::copy(pair.moving.point, result.moving);
    std::ranges::copy(pair.moving.normal, result.moving_normal);
    std::ranges::copy(pair.fixed.point, result.fixed);
    std::ranges::copy(pair.fixed.normal, result.fixed_normal);
    return result;
}

kv_alignment FromAlignment(const KV_ScenePane::AlignmentResult& found) {
    kv_alignment result{};
    result.is_found = found.isFound ? 1 : 0;
    std::ranges::copy(found.transform, result.transform);
    result.rms = found.rms;
    result.pair_count = found.pairs.size();
    return result;
}

kv_cut_save_entry FromEntry(const KV_ScenePane::CutSaveEntry& entry, std::size_t index, const std::string& file) {
    return {.object = static_cast<std::int32_t>(index),  // the member of the entry wraps above 32,767
            .outcome = entry.outcome,
            .cut_count = entry.numberOfCuts,
            .is_moved = entry.isMoved ? 1 : 0,
            .is_cut_while_moved = entry.isCutWhileMoved ? 1 : 0,
            .is_nothing_left = entry.isNothingLeft ? 1 : 0,
            .file = file.c_str(),
            .reason = entry.reason.c_str()};
}

static_assert(KV_ScenePane::CutToBeWritten == 0 && KV_ScenePane::CutWritten == 1);
static_assert(KV_ScenePane::CutNothingToSave == 2 && KV_ScenePane::CutNotFromPcm == 3);
static_assert(KV_ScenePane::CutFileNotRead == 4 && KV_ScenePane::CutFileNotWritten == 5);
static_assert(KV_ScenePane::HeightNotDecided == 0 && KV_ScenePane::HeightFromAllPoints == 1);
static_assert(KV_ScenePane::HeightFlatSpot == 2 && KV_ScenePane::HeightCurvedSpot == 3);
static_assert(static_cast<int>(KV_ScenePane::PropertyFormat::Text) == KV_PROPERTIES_TEXT);
static_assert(static_cast<int>(KV_ScenePane::PropertyFormat::Binary) == KV_PROPERTIES_BINARY);

KV_ScenePane::MeshBuffers* ToBuffers(kv_mesh* mesh) { return reinterpret_cast<KV_ScenePane::MeshBuffers*>(mesh); }

std::unique_ptr<KV_ScenePane::MeshBuffers> MakeMesh(const kv_vertex* vertices, std::size_t vertexCount,
                                                    const std::int32_t* triangles, std::size_t triangleCount,
                                                    bool hasColors) {
    for (std::size_t i = 0; i < triangleCount; ++i)
        for (std::size_t corner = 0; corner < 3; ++corner) {
            const std::int32_t vertex = triangles[3 * i + corner];
            if (vertex >= 0 && static_cast<std::size_t>(vertex) < vertexCount) continue;
            SetLastError("kv_mesh_create: triangle " + std::to_string(i) + " has the vertex " + std::to_string(vertex) +
                         ", there are " + std::to_string(vertexCount));
            return nullptr;
        }
    auto mesh = std::make_unique<KV_ScenePane::MeshBuffers>(hasColors);
    mesh->m_vVertices.resize(vertexCount);
    std::transform(vertices, vertices + vertexCount, mesh->m_vVertices.begin(), [](const kv_vertex& v) {
        return KV_ScenePane::Vertex{v.x, v.y, v.z, v.nx, v.ny, v.nz, v.color, v.grid_index};
    });
    mesh->m_vTriangles.resize(triangleCount);
    for (std::size_t i = 0; i < triangleCount; ++i)
        mesh->m_vTriangles[i] = {{triangles[3 * i], triangles[3 * i + 1], triangles[3 * i + 2]}};
    return mesh;
}

}  // namespace

// ---- pictures and picks

kv_status kv_capture_picture(kv_pane* pane, uint32_t* pixels, size_t capacity, int32_t* width, int32_t* height) {
    return CallViewer(pane, "kv_capture_picture",
                      [&](ScenePane& viewer) { return CapturePicture(viewer, pixels, capacity, width, height); });
}

kv_status kv_pick_surface(kv_pane* pane, int32_t x, int32_t y, kv_surface_point* hit) {
    return CallViewer(pane, "kv_pick_surface", [&](ScenePane& viewer) {
        if (hit == nullptr) return RefuseNull("kv_pick_surface", "the hit is null");
        KV_ScenePane::SurfacePoint found;  // stays at object -1 without a hit
        viewer.PickSurface(x, y, &found);
        *hit = {found.object, found.triangle, {found.point[0], found.point[1], found.point[2]}, found.distance};
        return KV_DONE;
    });
}

// ---- texts

size_t kv_object_name(kv_pane* pane, int32_t index, char* buffer, size_t capacity) {
    return TextOf(pane, "kv_object_name", buffer, capacity, [&](ScenePane& viewer) -> std::optional<std::string> {
        KV_ScenePane::ObjectInfo info;
        if (!ReadObjectInfo(viewer, index, "kv_object_name", &info)) return std::nullopt;
        return KV_ScenePane::PathBytes(info.name);
    });
}

int32_t kv_object_has_colors(kv_pane* pane, int32_t index) {
    return ResultOf(pane, "kv_object_has_colors", 0, [&](ScenePane& viewer) {
        KV_ScenePane::ObjectInfo info;
        return ReadObjectInfo(viewer, index, "kv_object_has_colors", &info) && info.hasVertexColors ? 1 : 0;
    });
}

size_t kv_graphics_info(kv_pane* pane, char* buffer, size_t capacity) {
    return TextOf(pane, "kv_graphics_info", buffer, capacity, [](ScenePane& viewer) -> std::optional<std::string> {
        KV_ScenePane::GraphicsInfo info;
        if (viewer.GetGraphicsInfo(&info))
            return info.device + "\n" + info.renderer + "\n" + info.vendor + "\n" + info.version;
        SetLastError("kv_graphics_info: there is no window, or the viewer has no picture");
        return std::nullopt;
    });
}

kv_status kv_frame_statistics_result(kv_pane* pane, kv_frame_statistics* statistics) {
    return CallViewer(pane, "kv_frame_statistics_result", [&](ScenePane& viewer) {
        if (statistics == nullptr) return RefuseNull("kv_frame_statistics_result", "the statistics are null");
        const KV_ScenePane::FrameStatistics found = viewer.GetFrameStatistics();
        *statistics = {found.count, found.seconds};
        return KV_DONE;
    });
}

// ---- cuts

kv_status kv_cut_with_lasso(kv_pane* pane, int32_t mode, const double* points, size_t count, int32_t* changed) {
    return CallViewer(pane, "kv_cut_with_lasso", [&](ScenePane& viewer) {
        if (mode < KV_ScenePane::PolygonOutside || mode > KV_ScenePane::FreehandVisible) {
            SetLastError("kv_cut_with_lasso: mode must be 0 to 5, not " + std::to_string(mode));
            return KV_BAD_ARGUMENTS;
        }
        if (points == nullptr && count > 0) return RefuseNull("kv_cut_with_lasso", "the points are null");
        std::vector<KV_ScenePane::LassoPoint> corners(count);
        for (std::size_t i = 0; i < count; ++i) corners[i] = {points[2 * i], points[2 * i + 1]};
        const bool hasChanged = viewer.CutWithLasso(static_cast<KV_ScenePane::SegmentationMode>(mode), corners);
        if (changed != nullptr) *changed = hasChanged ? 1 : 0;
        return KV_DONE;
    });
}

int32_t kv_undo_step_count(const kv_pane* pane) {
    return IsUsable(pane, "kv_undo_step_count") ? pane->m_pViewer->GetUndoStepCount() : 0;
}

size_t kv_cut_save_entries(kv_pane* pane, int32_t planned, kv_cut_save_entry* entries, size_t capacity) {
    if (entries == nullptr) capacity = 0;
    return ResultOf<std::size_t>(pane, "kv_cut_save_entries", 0, [&](ScenePane& viewer) {
        std::vector<KV_ScenePane::CutSaveEntry> found =
            planned != 0 ? viewer.PlanCutSave() : viewer.GetCutSaveResults();
        std::vector<std::string> files(found.size());
        std::ranges::transform(found, files.begin(),
                               [](const auto& entry) { return KV_ScenePane::PathBytes(entry.file); });
        pane->m_vSaveEntries.swap(found);
        pane->m_vSaveFiles.swap(files);
        const std::size_t count = pane->m_vSaveEntries.size();
        for (std::size_t i = 0; i < std::min(count, capacity); ++i)
            entries[i] = FromEntry(pane->m_vSaveEntries[i], i, pane->m_vSaveFiles[i]);
        return count;
    });
}

void kv_cut_mask_read(const void* address, kv_cut_mask* mask) {
    if (mask == nullptr) return SetLastError("kv_cut_mask_read: the mask is null");
    *mask = {};
    if (address == nullptr) return SetLastError("kv_cut_mask_read: the address is null");
    const auto& read = *static_cast<const ACAD::CutMask*>(address);
    mask->kind = read.m_nKind;
    std::ranges::copy(read.m_dProjection, mask->projection);
    std::ranges::copy(read.m_dModelView, mask->model_view);
    std::ranges::copy(read.m_nViewport, mask->viewport);
    std::ranges::copy(read.m_rcBounds, mask->bounds);
    mask->bits = read.m_vBits.m_vWords.data();
    mask->bit_count = read.m_vBits.m_uCount;
    mask->depth = read.m_vDepth.empty() ? nullptr : read.m_vDepth.data();
    mask->depth_count = read.m_vDepth.size();
}

// ---- alignments and the clip plane

kv_status kv_align_by_pairs(kv_pane* pane, const kv_alignment_pair* pairs, size_t count, kv_alignment* result) {
    return CallViewer(pane, "kv_align_by_pairs", [&](ScenePane& viewer) {
        if (pairs == nullptr && count > 0) return RefuseNull("kv_align_by_pairs", "the pairs are null");
        std::vector<KV_ScenePane::AlignmentPair> given(count);
        std::transform(pairs, pairs + count, given.begin(), ToPair);
        viewer.AlignByPairs(given);
        if (pane->m_pViewer == nullptr) return KV_DONE;  // destroyed in a callback
        if (result != nullptr) *result = FromAlignment(viewer.GetAlignmentResult());
        return KV_DONE;
    });
}

kv_status kv_alignment_result(kv_pane* pane, kv_alignment* result, kv_alignment_pair* pairs, double* residuals,
                              size_t capacity) {
    return CallViewer(pane, "kv_alignment_result", [&](ScenePane& viewer) {
        const KV_ScenePane::AlignmentResult found = viewer.GetAlignmentResult();
        if (result != nullptr) *result = FromAlignment(found);
        const auto fits = [&](std::size_t count) { return static_cast<std::ptrdiff_t>(std::min(count, capacity)); };
        if (pairs != nullptr)
            std::transform(found.pairs.begin(), found.pairs.begin() + fits(found.pairs.size()), pairs, FromPair);
        if (residuals != nullptr) std::copy_n(found.residuals.begin(), fits(found.residuals.size()), residuals);
        return KV_DONE;
    });
}

kv_status kv_clip_height_result(kv_pane* pane, kv_clip_height* height) {
    return CallViewer(pane, "kv_clip_height_result", [&](ScenePane& viewer) {
        if (height == nullptr) return RefuseNull("kv_clip_height_result", "the height is null");
        const KV_ScenePane::ClipHeight found = viewer.GetClipHeight();
        *height = {found.found ? 1 : 0, found.height, found.kind};
        return KV_DONE;
    });
}

// ---- meshes

kv_mesh* kv_mesh_create(const kv_vertex* vertices, size_t vertex_count, const int32_t* triangles, size_t triangle_count,
                        int32_t has_colors) {
    try {
        if ((vertices == nullptr && vertex_count > 0) || (triangles == nullptr && triangle_count > 0)) {
            RefuseNull("kv_mesh_create",
                       vertices == nullptr && vertex_count > 0 ? "the vertices are null" : "the triangles are null");
            return nullptr;
        }
        auto mesh = MakeMesh(vertices, vertex_count, triangles, triangle_count, has_colors != 0);
        return reinterpret_cast<kv_mesh*>(mesh.release());
    } catch (...) {
        ReportException("kv_mesh_create");
        return nullptr;
    }
}

void kv_mesh_destroy(kv_mesh* mesh) { delete ToBuffers(mesh); }

// ---- files

kv_status kv_import_file(kv_pane* pane, const char* path, int32_t skip, float confidence, int32_t color) {
    return CallViewer(pane, "kv_import_file", [&](ScenePane& viewer) {
        if (path == nullptr) return RefuseNull("kv_import_file", "the path is null");
        if (skip < 1 || skip > std::numeric_limits<std::int16_t>::max()) {
            SetLastError("kv_import_file: skip must be 1 to 32767, not " + std::to_string(skip));
            return KV_BAD_ARGUMENTS;
        }
        const KV_ScenePane::ImportOptions options = {
            .skip = static_cast<std::int16_t>(skip), .confidence = confidence, .color = color};
        std::string reason;
        if (viewer.ImportFile(path, options, &reason)) return KV_DONE;
        SetLastError(reason);
        return KV_FAILED;
    });
}

size_t kv_file_error(kv_pane* pane, char* buffer, size_t capacity) {
    return TextOf(pane, "kv_file_error", buffer, capacity,
                  [](ScenePane& viewer) -> std::optional<std::string> { return viewer.LastError(); });
}

// ---- persisted properties

size_t kv_save_properties(kv_pane* pane, int32_t format, char* buffer, size_t capacity) {
    return TextOf(pane, "kv_save_properties", buffer, capacity, [&](ScenePane& viewer) -> std::optional<std::string> {
        if (format != KV_PROPERTIES_TEXT && format != KV_PROPERTIES_BINARY) {
            SetLastError("kv_save_properties: format must be KV_PROPERTIES_TEXT or KV_PROPERTIES_BINARY, not " +
                         std::to_string(format));
            return std::nullopt;
        }
        const bool wasModified = viewer.IsModified();
        std::string store = viewer.SaveProperties(static_cast<KV_ScenePane::PropertyFormat>(format));
        if (wasModified && store.size() >= capacity) ControlOf(viewer).m_bModified = true;  // the host has no store yet
        return store;
    });
}

kv_status kv_load_properties(kv_pane* pane, const char* store, size_t size) {
    return CallViewer(pane, "kv_load_properties", [&](ScenePane& viewer) {
        if (store == nullptr && size > 0) return RefuseNull("kv_load_properties", "the store is null");
        std::string reason;
        if (viewer.LoadProperties({store, size}, &reason)) return KV_DONE;
        SetLastError(reason);
        return KV_FAILED;
    });
}

int32_t kv_is_modified(const kv_pane* pane) {
    return IsUsable(pane, "kv_is_modified") && pane->m_pViewer->IsModified() ? 1 : 0;
}

// The import of one file, for the runs without a window, for the window and for its worker threads.
#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "KV_ScenePane/PointFiles.h"
#include "KV_ScenePane/Types.h"
#include "KV_ScenePane/_DKV_ScenePane.h"

/// What applies to every scan of an import; meshes ignore it.
struct ImportSettings {
    /// The grid is thinned to one point per skip x skip points.
    std::int16_t skip = 1;
    /// Points of a lower confidence are left out; those at the limit are kept.
    float confidence = 0.0f;
    /// 0x00BBGGRR, for scans without colours: a light beige.
    std::int32_t color = 0xC8D4DC;
    /// Objects have no colours of their vertices: those of scans and those that scenepane-read found are left out.
    bool leavesOutColors = false;
};

/// The result for one file.
struct ImportResult {
    enum class State {
        NotStarted,  ///< cancelled before its turn
        Added,
        Points,  ///< the file holds free points, which are no object; nothing was added
        Failed
    };
    State state = State::NotStarted;
    /// One line without the file's name: the reason of a failure, never empty; or the messages about a file that was
    /// read, usually none.
    std::string text;
    /// Of a file of points that was read.
    std::shared_ptr<KV_ScenePane::PointCloud> points = nullptr;
};

/// A parallel import of the viewer that has begun; any thread may pass grids to its entry.
struct GridEntry {
    /// First argument of the entry, from BeginParallelImport().
    void* control = nullptr;
    /// From BeginParallelImport().
    KV_ScenePane::ImportMeasurementEntry entry = nullptr;
    /// 0x00BBGGRR, for scans without colours.
    std::uint32_t color = 0;
    /// Of the import, for the reason of a scan of which no triangle is left.
    std::int16_t skip = 1;
    float confidence = 0.0f;
    bool leavesOutColors = false;
};

/// An entry with the colour and the limits of @p settings, and without a control.
[[nodiscard]] GridEntry EntryFor(const ImportSettings& settings);

/// Sets the viewer's skip value and confidence limit for the imports that follow.
void ApplySettings(KV_ScenePane::_DKV_ScenePane& methods, const ImportSettings& settings);

/// Imports one file of any type, on the thread of the viewer: the readers of the viewer first, then scenepane-read
/// where these are not for the file or refuse it. Needs a DebugRouter for the reason of a failure, and the component
/// registry for hps files and textures. Throws nothing that the import throws: that is a reason too.
/// @param file      path in bytes
/// @param settings  ApplySettings() has set them
[[nodiscard]] ImportResult ImportFile(KV_ScenePane::_DKV_ScenePane& methods, const std::string& file,
                                      const ImportSettings& settings);

/// The same without scenepane-read; of a file of points only the state.
[[nodiscard]] ImportResult ImportByViewer(KV_ScenePane::_DKV_ScenePane& methods, const std::string& file,
                                          const ImportSettings& settings);

/// The same by scenepane-read alone.
[[nodiscard]] ImportResult ImportByProcess(KV_ScenePane::_DKV_ScenePane& methods, const std::string& file,
                                           const ImportSettings& settings);

/// Reads a grid that the host reads itself (FileLook::Grid) and passes it to the entry. Any thread; the same reasons
/// and the same conditions as ImportFile().
/// @param index  place of the object among those of the parallel import
[[nodiscard]] ImportResult ImportGridFile(const GridEntry& entry, const std::string& file, std::int32_t index);

/// The viewer's indices of objects have 16 bits, and it does not check them: no import may add one more.
inline constexpr int kMostObjects = 32767;

/// How many more objects the scene can hold.
[[nodiscard]] int FreePlaces(KV_ScenePane::_DKV_ScenePane& methods);

/// Fits the view to the scene, then magnifies: with @p zoom 2 the view spans half the size.
void FitView(KV_ScenePane::_DKV_ScenePane& methods, float zoom);
/// Magnifies the present view by @p zoom: with 2 it spans half the size.
void MagnifyView(KV_ScenePane::_DKV_ScenePane& methods, float zoom);

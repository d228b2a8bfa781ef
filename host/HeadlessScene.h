// What the runs without a window have in common: a viewer, its files, its view, its clip plane and its cuts.
#pragma once
#include <cstdio>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "CommandLine.h"
#include "KV_ScenePane/ScenePane.h"
#include "SceneReport.h"

/// For the debugger output that belongs to no import or export: one line per text.
[[nodiscard]] std::function<void(std::string_view text)> PrintOtherOutput(std::FILE* err);

/// A line that does not change the exit status; not printed when the options ask for quiet.
void PrintWarning(const HostOptions& options, std::FILE* err, const std::string& line);

/// @param kind  OffScreen where something is drawn; NoPicture needs no OpenGL
/// @return null without a viewer; the reason is printed then
[[nodiscard]] std::unique_ptr<KV_ScenePane::ScenePane> OpenPane(KV_ScenePane::WindowRequest::Kind kind,
                                                                const HostOptions& options, std::FILE* err);

/// What a run does with files that hold free points and no mesh.
enum class PointFiles {
    Refused,  ///< they are failures
    Counted,  ///< they are in the report
    Shown     ///< and the viewer has their points, in the colour of the settings where they have none
};

/// Imports the files in their order and prints a line for each that failed, or that there is a message about.
/// Adds what came of them to @p report.
/// @param files      of the options, also folders and lists of files (InputFiles.h)
/// @param afterEach  called when a file has added its object
void ImportFiles(KV_ScenePane::ScenePane& pane, const std::vector<std::string>& files, const HostOptions& options,
                 PointFiles points, SceneReport& report, std::FILE* err, const std::function<void()>& afterEach = {});

/// Whether every file added what it holds, and with options.strict without a warning: what the exit status needs.
[[nodiscard]] bool HasImportedAll(const SceneReport& report, const HostOptions& options);

/// Replaces the transforms of the imported objects by those of options.transformFile, if the options have one, and
/// updates their reports. Prints a line about entries and objects that do not belong together.
/// @return false when the file cannot be read, or when no object has an entry; a line says so
[[nodiscard]] bool ApplyTransforms(KV_ScenePane::ScenePane& pane, const HostOptions& options, SceneReport& report,
                                   std::FILE* err);

/// ImportFiles() of all files of the options, then ApplyTransforms(). @return empty when that returned false
[[nodiscard]] std::optional<SceneReport> ImportScene(KV_ScenePane::ScenePane& pane, const HostOptions& options,
                                                     PointFiles points, std::FILE* err);

/// Gives objects without colours those that the window would show them in, for a picture. The reports keep the colours
/// of the import.
void ShowColors(KV_ScenePane::ScenePane& pane, const HostOptions& options, const SceneReport& report);

/// The direction of the view, then the fit, which depends on it.
void ShowView(KV_ScenePane::ScenePane& pane, const HostOptions& options);
/// The same for another view than that of the options.
void ShowView(KV_ScenePane::ScenePane& pane, const HostOptions& options, KV_ScenePane::ViewMode view);

/// Background, axes and size of points of the options, for a picture. After ShowView(), which may need another
/// background.
void ShowLook(KV_ScenePane::ScenePane& pane, const HostOptions& options);

/// Clips by the plane of the options, which is not drawn. After the fit of the view, which moves the plane within its
/// surface. Prints a line when no height was found.
/// @return false when no height was found
/// @throws what SetClipPlaneEnabled() throws
[[nodiscard]] bool ClipObjects(KV_ScenePane::ScenePane& pane, const HostOptions& options, std::FILE* err);

/// Prints a line when the clip plane hides all of the objects.
void WarnIfAllIsCutAway(KV_ScenePane::ScenePane& pane, const HostOptions& options,
                        const std::vector<ObjectReport>& objects, std::FILE* err);

/// The text for a placement of the clip plane that threw.
[[nodiscard]] std::string NoPlacement(const std::exception& error);

/// Cuts the objects by the lassos of the options, one after the other, each in a frame that shows the cuts before it.
/// Prints a line when none has changed anything.
/// @return one entry per lasso
[[nodiscard]] std::vector<CutReport> CutObjects(KV_ScenePane::ScenePane& pane, const HostOptions& options,
                                                std::FILE* err);

/// @return false when there were lassos and none has changed anything
[[nodiscard]] bool HasCutOrNoLasso(std::span<const CutReport> cuts);

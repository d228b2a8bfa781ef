// The values of options: each function reads one and stores it. False for an invalid value, and nothing is stored then.
#pragma once
#include <string>
#include <string_view>

#include "CommandLine.h"

[[nodiscard]] bool ReadPicturePath(std::string_view text, HostOptions& options);
[[nodiscard]] bool ReadExportPath(std::string_view text, HostOptions& options);
[[nodiscard]] bool ReadSavedTransforms(std::string_view text, HostOptions& options);
[[nodiscard]] bool ReadSize(std::string_view text, HostOptions& options);
[[nodiscard]] bool ReadView(std::string_view text, HostOptions& options);
[[nodiscard]] bool ReadDrawMode(std::string_view text, HostOptions& options);
[[nodiscard]] bool ReadZoom(std::string_view text, HostOptions& options);
[[nodiscard]] bool ReadViews(std::string_view text, HostOptions& options);
[[nodiscard]] bool ReadBackground(std::string_view text, HostOptions& options);
[[nodiscard]] bool ReadSamples(std::string_view text, HostOptions& options);
[[nodiscard]] bool ReadPointSize(std::string_view text, HostOptions& options);
[[nodiscard]] bool ReadSkip(std::string_view text, HostOptions& options);
[[nodiscard]] bool ReadConfidence(std::string_view text, HostOptions& options);
[[nodiscard]] bool ReadColor(std::string_view text, HostOptions& options);
[[nodiscard]] bool ReadClip(std::string_view text, HostOptions& options);
[[nodiscard]] bool ReadGpu(std::string_view text, HostOptions& options);
[[nodiscard]] bool ReadPick(std::string_view text, HostOptions& options);
[[nodiscard]] bool ReadCut(std::string_view text, HostOptions& options);

/// What is wrong with an invalid value of --cut, which may be too long to be quoted.
[[nodiscard]] std::string CutError(std::string_view text);

// The line about an import in the status bar.
#pragma once
#include <QString>
#include <span>
#include <string>

#include "FileImport.h"

/// How many files were opened, and what the viewer wrote about those that were: the message of one file with its name,
/// or how many files have one; the message pane has all.
/// @param files    paths in bytes
/// @param results  as many
[[nodiscard]] QString ImportStatus(std::span<const std::string> files, std::span<const ImportResult> results);

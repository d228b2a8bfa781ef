// The subjects by which the reference lists the methods.
#pragma once
#include <span>
#include <string_view>
#include <vector>

#include "SurfaceText.h"

namespace bindings {

struct Subject {
    std::string_view title;
    std::vector<std::string_view> methods;  ///< in the order in which the reference describes them
};

/// All subjects. Every method belongs to one.
[[nodiscard]] std::span<const Subject> Subjects();

/// @throws SourceError for a method without a subject or with two, and for a subject with an unknown method
void CheckSubjects(std::span<const Subject> subjects, const Surface& surface);

}  // namespace bindings

// The part of the reference that is not about one member.
#pragma once
#include <string_view>

namespace bindings {

/// From the title to the text of the class of the methods, from there to that of the class of the events, and what
/// follows. Markdown; each starts and ends with a whole line.
extern const std::string_view kReferenceHead, kReferenceBeforeEvents, kReferenceEnd;

}  // namespace bindings

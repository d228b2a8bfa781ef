// Prints the kind of a window, which is a parameter of many tests.
#pragma once
#include <ostream>

#include "KV_ScenePane/ScenePane.h"

namespace KV_ScenePane {

inline const char* TextOf(WindowRequest::Kind kind) {
    switch (kind) {
        case WindowRequest::Kind::Child:
            return "Child";
        case WindowRequest::Kind::TopLevel:
            return "TopLevel";
        case WindowRequest::Kind::OffScreen:
            return "OffScreen";
        case WindowRequest::Kind::NoPicture:
            return "NoPicture";
    }
    return "?";
}
/// For the lists of parameterised tests. In the namespace of the type, where GoogleTest finds it.
inline void PrintTo(WindowRequest::Kind kind, std::ostream* out) { *out << TextOf(kind); }

}  // namespace KV_ScenePane

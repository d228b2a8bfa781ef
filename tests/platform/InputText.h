// Comparison and printing of inputs.
#pragma once
#include <ostream>

#include "KV_ScenePane/Input.h"

namespace KV_ScenePane {

inline bool operator==(const MouseInput& a, const MouseInput& b) {
    return a.kind == b.kind && a.flags == b.flags && a.x == b.x && a.y == b.y && a.delta == b.delta;
}
inline void PrintTo(const MouseInput& input, std::ostream* out) {
    *out << "kind " << static_cast<int>(input.kind) << " flags " << input.flags << " at " << input.x << ", " << input.y
         << " delta " << input.delta;
}
inline bool operator==(const KeyInput& a, const KeyInput& b) {
    return a.isDown == b.isDown && a.nChar == b.nChar && a.nRepCnt == b.nRepCnt && a.nFlags == b.nFlags;
}
inline void PrintTo(const KeyInput& input, std::ostream* out) {
    *out << (input.isDown ? "press of " : "release of ") << input.nChar << " times " << input.nRepCnt << " flags 0x"
         << std::hex << input.nFlags << std::dec;
}

}  // namespace KV_ScenePane

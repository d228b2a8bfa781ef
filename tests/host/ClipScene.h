// A scene with a known place of the clip plane, and the stored settings of the plane.
#pragma once
#include <QSettings>
#include <string>

#include "host/MeshFiles.h"

/// Two horizontal squares of four vertices each that face +Z: x from 0 to 40 at height 0, x from 60 to 100 at height
/// 20; y from 0 to 100. Fewer than ten vertices lie near any spot, so the plane is placed at their mean height, 10.
/// @param x0, y0  added to x and y
inline void WriteTwoLevels(const std::string& path, int x0 = 0, int y0 = 0) {
    std::string text = PlyHeader(8, 4);
    for (const int level : {0, 1}) {
        const int left = 60 * level, right = left + 40, height = 20 * level;
        for (const auto& [x, y] :
             {std::pair(left, 0), std::pair(right, 0), std::pair(right, 100), std::pair(left, 100)})
            text += std::to_string(x0 + x) + ' ' + std::to_string(y0 + y) + ' ' + std::to_string(height) + '\n';
    }
    text += "3 0 1 2\n3 0 2 3\n3 4 5 6\n3 4 6 7\n";
    WriteText(path, text);
}

/// A square at one height: the histogram of heights refuses a range without extent, so a placement throws.
inline void WriteOneLevel(const std::string& path) {
    WriteText(path, PlyHeader(4, 2) + "0 0 5\n100 0 5\n100 100 5\n0 100 5\n3 0 1 2\n3 0 2 3\n");
}

/// All windows of a test program share one settings file.
inline void ForgetStoredClip() { QSettings("scenepane", "scenepane").remove("clip"); }

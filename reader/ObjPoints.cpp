// A line has up to seven numbers: the position, then a weight, or a colour.
#include "ObjPoints.h"

#include <array>
#include <cstddef>

#include "NumberWords.h"

namespace {

constexpr std::size_t kMostNumbers = 7, kColored = 6;

/// The numbers after the current word, up to the end of its line. @return how many
std::size_t NumbersOfLine(NumberWords& words, std::array<double, kMostNumbers>& numbers) {
    std::size_t count = 0;
    while (count < numbers.size() && words.NextOfLine()) {
        if (!words.Number(numbers[count++])) throw words.NoNumber();
    }
    return count;
}

}  // namespace

FoundMesh ReadObjPoints(std::string_view text) {
    FoundMesh found;
    for (NumberWords words(text); words.Next(); words.SkipLine()) {
        if (!words.Is("v")) continue;
        std::array<double, kMostNumbers> n{};
        const std::size_t count = NumbersOfLine(words, n);
        if (count < 3) throw words.Error("a point needs three numbers");
        Vertex vertex;
        vertex.x = static_cast<float>(n[0]);
        vertex.y = static_cast<float>(n[1]);
        vertex.z = static_cast<float>(n[2]);
        vertex.color = ColorWord(255, 255, 255);
        if (count == kColored) {
            vertex.color = ColorWord(ChannelOf(n[3]), ChannelOf(n[4]), ChannelOf(n[5]));
            found.mesh.m_bHasColors = true;
        }
        found.mesh.m_vVertices.push_back(vertex);
    }
    return found;
}

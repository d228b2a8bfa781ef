// One pass over the elements in the order of the file; polygons become triangles at the end, when the vertices are
// known.
#include "AnyPly.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <utility>

#include "PlyHeader.h"
#include "PlyNumbers.h"
#include "Polygons.h"

namespace {

/// What a property of a vertex is.
enum Target : std::size_t { kX, kY, kZ, kNx, kNy, kNz, kRed, kGreen, kBlue, kAlpha, kU, kV, kTargets, kNone };

Target TargetOf(std::string_view name) {
    static constexpr std::pair<std::string_view, Target> kNames[] = {{"x", kX},
                                                                     {"y", kY},
                                                                     {"z", kZ},
                                                                     {"nx", kNx},
                                                                     {"ny", kNy},
                                                                     {"nz", kNz},
                                                                     {"red", kRed},
                                                                     {"r", kRed},
                                                                     {"green", kGreen},
                                                                     {"g", kGreen},
                                                                     {"blue", kBlue},
                                                                     {"b", kBlue},
                                                                     {"alpha", kAlpha},
                                                                     {"a", kAlpha},
                                                                     {"diffuse_red", kRed},
                                                                     {"diffuse_green", kGreen},
                                                                     {"diffuse_blue", kBlue},
                                                                     {"s", kU},
                                                                     {"t", kV},
                                                                     {"u", kU},
                                                                     {"v", kV},
                                                                     {"texture_u", kU},
                                                                     {"texture_v", kV}};
    const auto* const found = std::ranges::find(kNames, name, &std::pair<std::string_view, Target>::first);
    return found == std::end(kNames) ? kNone : found->second;
}

using Numbers = std::array<float, kTargets>;

std::int32_t IndexOf(double value) {
    constexpr double kMost = std::numeric_limits<std::int32_t>::max();
    return value >= 0 && value <= kMost && value == std::floor(value) ? static_cast<std::int32_t>(value) : -1;
}

/// The largest colour decides the range: other programs write 0 to 1, 0 to 255 and 0 to 65535 in any type of number.
double ColorScale(const std::vector<std::array<float, 4>>& colors, bool isReal) {
    float largest = 0.0f;
    for (const auto& color : colors)
        for (const float channel : color) largest = std::max(largest, channel);
    if (isReal && largest <= 1.0f) return 1.0;
    return largest <= 255.0f ? 1.0 / 255.0 : 1.0 / 65535.0;
}

class Reader {
public:
    Reader(const PlyHeader& header, std::string_view file)
        : m_header(header), m_pNumbers(MakePlyNumbers(header, file)) {}

    FoundMesh Read(const LoadNamedFile& load) {
        for (const PlyElementHead& element : m_header.elements) {
            m_pNumbers->RequireRecords(element);
            if (element.name == "vertex" && m_found.mesh.m_vVertices.empty())
                ReadVertices(element);
            else if (element.name == "face")
                ReadFaces(element);
            else if (element.name == "tristrips")
                ReadStrips(element);
            else
                Skip(element);
        }
        MakeTriangles();
        AddImage(load);
        if (const std::uint64_t bytes = m_pNumbers->BytesAfterEnd(); bytes > 0)
            m_found.leftOut.push_back(std::to_string(bytes) + " bytes follow the end of its data");
        return std::move(m_found);
    }

private:
    void ReadVertices(const PlyElementHead& element) {
        std::vector<Target> targets;
        for (const PlyItem& item : element.items) targets.push_back(item.countType ? kNone : TargetOf(item.name));
        const auto has = [&](Target target) { return std::ranges::find(targets, target) != targets.end(); };
        const std::pair<Target, const char*> needed[] = {{kX, "x"}, {kY, "y"}, {kZ, "z"}};
        for (const auto& [target, name] : needed)
            if (!has(target)) throw UnreadableFile(std::string("No such property: ").append(name));
        m_found.mesh.m_bHasColors = has(kRed) && has(kGreen) && has(kBlue);
        m_found.hasNormals = has(kNx) && has(kNy) && has(kNz);
        m_bVertexUv = has(kU) && has(kV);
        const auto count = static_cast<std::size_t>(element.count);
        m_found.mesh.m_vVertices.reserve(count);
        if (m_found.mesh.m_bHasColors) m_vColors.reserve(count);
        for (std::size_t i = 0; i < count; ++i) ReadVertex(element, targets);
        SetColors(element);
    }

    void ReadVertex(const PlyElementHead& element, const std::vector<Target>& targets) {
        Numbers numbers{};
        numbers[kAlpha] = -1.0f;  // none
        for (std::size_t i = 0; i < targets.size(); ++i) {
            const PlyItem& item = element.items[i];
            if (item.countType) {
                SkipList(item);
                continue;
            }
            const double value = m_pNumbers->Next(item.type);
            if (targets[i] != kNone) numbers[targets[i]] = static_cast<float>(value);
        }
        m_pNumbers->EndRecord();
        const Numbers& n = numbers;
        m_found.mesh.m_vVertices.push_back({n[kX], n[kY], n[kZ], n[kNx], n[kNy], n[kNz], ColorWord(255, 255, 255), 0});
        if (m_found.mesh.m_bHasColors) m_vColors.push_back({n[kRed], n[kGreen], n[kBlue], n[kAlpha]});
        if (m_bVertexUv) m_vVertexUv.push_back({n[kU], n[kV]});
    }

    void SetColors(const PlyElementHead& element) {
        if (!m_found.mesh.m_bHasColors) return;
        const auto isRed = [](const PlyItem& item) { return TargetOf(item.name) == kRed; };
        const double scale = ColorScale(m_vColors, IsReal(std::ranges::find_if(element.items, isRed)->type));
        for (std::size_t i = 0; i < m_vColors.size(); ++i) {
            const auto& [red, green, blue, alpha] = m_vColors[i];
            m_found.mesh.m_vVertices[i].color =
                ColorWord(ChannelOf(red * scale), ChannelOf(green * scale), ChannelOf(blue * scale),
                          alpha < 0 ? 255 : ChannelOf(alpha * scale));
        }
        m_vColors = {};
    }

    void ReadFaces(const PlyElementHead& element) {
        const PlyItem* const indices = element.FindIndices();
        if (indices == nullptr) {
            if (element.count > 0) throw UnreadableFile("No such property: vertex_indices");
            return;
        }
        if (element.Find("red") != nullptr && !m_found.mesh.m_bHasColors)
            m_found.leftOut.emplace_back("the colours of its faces are not shown");
        for (std::uint64_t i = 0; i < element.count; ++i) {
            const std::size_t first = m_vCorners.size();
            for (const PlyItem& item : element.items) {
                if (&item == indices)
                    AppendList(item, [this](double value) { m_vCorners.push_back(IndexOf(value)); });
                else if (item.countType && item.name == "texcoord")
                    AppendList(item, [this](double value) { m_vFaceUv.push_back(static_cast<float>(value)); });
                else
                    SkipItem(item);
            }
            m_pNumbers->EndRecord();
            m_vSizes.push_back(m_vCorners.size() - first);
        }
    }

    /// Each corner after the second makes a triangle with the two before it, turned every second time; a negative one
    /// begins a new strip.
    void ReadStrips(const PlyElementHead& element) {
        const PlyItem* const indices = element.FindIndices();
        if (indices == nullptr) {
            Skip(element);
            return;
        }
        for (std::uint64_t i = 0; i < element.count; ++i) {
            for (const PlyItem& item : element.items) {
                if (&item != indices) {
                    SkipItem(item);
                    continue;
                }
                std::size_t length = 0;
                std::int32_t before = 0, last = 0;
                AppendList(item, [&](double value) {
                    const std::int32_t corner = value < 0 ? -1 : IndexOf(value);
                    length = value < 0 ? 0 : length + 1;
                    if (length > 2) AddStripTriangle(length, before, last, corner);
                    before = std::exchange(last, corner);
                });
            }
            m_pNumbers->EndRecord();
        }
    }

    void AddStripTriangle(std::size_t length, std::int32_t before, std::int32_t last, std::int32_t corner) {
        if (before == last || last == corner || before == corner) return;  // joins two strips
        const bool isTurned = length % 2 == 0;
        m_vCorners.insert(m_vCorners.end(), {isTurned ? last : before, isTurned ? before : last, corner});
        m_vSizes.push_back(3);
    }

    template <class Take>
    void AppendList(const PlyItem& item, Take take) {
        for (std::uint64_t left = m_pNumbers->NextCount(item); left > 0; --left) take(m_pNumbers->Next(item.type));
    }
    void SkipList(const PlyItem& item) {
        AppendList(item, [](double) {});
    }
    void SkipItem(const PlyItem& item) {
        if (item.countType)
            SkipList(item);
        else
            (void)m_pNumbers->Next(item.type);
    }
    void Skip(const PlyElementHead& element) {
        if (element.items.empty()) return;
        for (std::uint64_t i = 0; i < element.count; ++i) {
            for (const PlyItem& item : element.items) SkipItem(item);
            m_pNumbers->EndRecord();
        }
    }

    void MakeTriangles() {
        if (m_header.Find("vertex") == nullptr) throw UnreadableFile("No such element: vertex");
        const std::vector<Vertex>& vertices = m_found.mesh.m_vVertices;
        const bool hasFaceUv = m_vFaceUv.size() == 2 * m_vCorners.size() && !m_vFaceUv.empty();
        std::size_t first = 0;
        std::vector<std::size_t> picked;
        for (const std::size_t size : m_vSizes) {
            const std::span<const std::int32_t> corners = std::span(m_vCorners).subspan(first, size);
            RequireCorners(corners, vertices.size(), m_found.mesh.m_vTriangles.size());
            picked.clear();
            AppendPolygon(vertices, corners, m_found.mesh.m_vTriangles, &picked);
            for (const std::size_t at : picked) {
                if (hasFaceUv)
                    m_found.texCoords.push_back({m_vFaceUv[2 * (first + at)], m_vFaceUv[2 * (first + at) + 1]});
                else if (m_bVertexUv)
                    m_found.texCoords.push_back(m_vVertexUv[static_cast<std::size_t>(corners[at])]);
            }
            first += size;
        }
    }

    void AddImage(const LoadNamedFile& load) {
        if (m_found.texCoords.empty() || m_header.textureFiles.empty()) return;
        if (m_header.textureFiles.size() > 1) {
            m_found.leftOut.emplace_back("its images are not shown: it has more than one");
            return;
        }
        m_found.image = load(m_header.textureFiles.front());
        if (m_found.image.empty())
            m_found.leftOut.push_back("its image is not shown: there is no file " + m_header.textureFiles.front());
    }

    const PlyHeader& m_header;
    std::unique_ptr<PlyNumbers> m_pNumbers;
    FoundMesh m_found;
    std::vector<std::array<float, 4>> m_vColors;  // red, green, blue, alpha as in the file
    std::vector<TexCoord> m_vVertexUv;            // texture coordinates of the vertices, where they have some
    bool m_bVertexUv = false;
    // Polygons: their corners one after the other, and how many each has.
    std::vector<std::int32_t> m_vCorners;
    std::vector<std::size_t> m_vSizes;
    std::vector<float> m_vFaceUv;  // two per corner, where all faces have them
};

}  // namespace

FoundMesh ReadAnyPly(std::string_view file, const LoadNamedFile& load) {
    const PlyHeader header = ParsePlyHeader(file);
    return Reader(header, file).Read(load);
}

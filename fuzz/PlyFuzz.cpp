// Any bytes as a ply file: refused, or a header whose elements follow one another in the data, and whose fast readers
// give the same values as the readers that visit item by item. Memory is in proportion to the file.
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "Require.h"
#include "io/CPLYFile.h"

namespace {

template <class Number>
struct Collected {
    std::vector<Number> values;
    int members = -1;   // per list; -1 before the first list
    bool alike = true;  // whether all lists have the same number of members
};

template <class Number>
bool CollectList(std::int64_t, const std::vector<Number>& list, void* user) {
    auto& all = *static_cast<Collected<Number>*>(user);
    const int members = static_cast<int>(list.size());
    if (all.members < 0) all.members = members;
    all.alike = all.alike && all.members == members;
    all.values.insert(all.values.end(), list.begin(), list.end());
    return true;
}

template <class Number>
bool CollectNumber(std::int64_t, Number value, void* user) {
    static_cast<Collected<Number>*>(user)->values.push_back(value);
    return true;
}

template <class Number>
bool SameBits(const std::vector<Number>& a, const std::vector<Number>& b) {
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(Number)) == 0);
}

/// Runs a reader. @return the text and position of its error, empty without one
template <class Walk>
std::string ErrorOf(Walk walk) {
    try {
        walk();
        return {};
    } catch (const CPLYFileError& error) {
        return error.what() + std::to_string(error.GetPosition());
    }
}

template <class Number, class ForEach>
void CompareLists(DataSection& data, const Element& element, const std::string& item, ForEach forEach) {
    Collected<Number> all;
    const bool slow = ErrorOf([&] { forEach(all); }).empty();
    if (all.members < 0 || !all.alike) return;
    const std::size_t expected = static_cast<std::size_t>(element.m_iCount) * static_cast<std::size_t>(all.members);
    if (expected > all.values.size()) return;
    std::vector<Number> fast(expected + 1);  // never null
    if (!data.ReadLists(element.m_sName, item, all.members, fast.data())) return;
    fast.pop_back();
    Require(slow && SameBits(fast, all.values));
}

void CompareFloats(DataSection& data, const Element& element, const std::string& item) {
    Collected<float> all;
    const std::string error = ErrorOf([&] { data.ForEachFloat(element.m_sName, item, CollectNumber<float>, &all); });
    if (element.HasLists() || static_cast<std::size_t>(element.m_iCount) > data.m_sData.size()) return;
    std::vector<float> fast(static_cast<std::size_t>(element.m_iCount));
    const PlyColumn column{item, PlyColumn::kFloat, fast.data(), sizeof(float)};
    Require(ErrorOf([&] { data.ReadColumns(element.m_sName, {&column, 1}); }) == error);
    Require(!error.empty() || SameBits(fast, all.values));
}

void WalkItem(DataSection& data, const Element& element, const std::string& item) {
    Collected<int> ints;
    (void)ErrorOf([&] { data.ForEachInt(element.m_sName, item, CollectNumber<int>, &ints); });
    CompareFloats(data, element, item);
    CompareLists<int>(data, element, item,
                      [&](auto& all) { data.ForEachIntList(element.m_sName, item, CollectList<int>, &all); });
    CompareLists<float>(data, element, item,
                        [&](auto& all) { data.ForEachFloatList(element.m_sName, item, CollectList<float>, &all); });
}

/// Reads every byte of a view, which the address sanitizer checks.
void ReadView(DataSection& data, const Element& element, const std::string& item) {
    const PlyArrayView view = data.GetArrayView(element.m_sName, item);
    const auto& property = static_cast<const Element::Property&>(element.GetProperty(item));
    unsigned sum = 0;
    for (int i = 0; i < view.m_iCount; ++i)
        for (int b = 0; b < PlyTypeWidth(property.m_iType); ++b)
            sum += static_cast<unsigned char>(view.m_pFirst[i * view.m_iStride + b]);
    Require(view.m_iCount > 0 || sum == 0);
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    CPLYFile file;
    try {
        std::istringstream stream(std::string(reinterpret_cast<const char*>(bytes), size));
        file.Read(stream, false);
    } catch (const CPLYFileError&) {
        return 0;
    }
    DataSection& data = *file.m_pDataSection;
    std::int64_t before = 0;
    Require(data.m_vElementStart.size() == file.m_vElements.size());
    for (const std::int64_t start : data.m_vElementStart) {
        Require(start >= before);
        before = start;
    }
    Require(data.m_iEnd >= before);
    std::size_t walks = 0;
    for (const auto& item : file.m_vElements) {
        const auto& element = static_cast<const Element&>(*item);
        if (&file.GetElement(element.m_sName) != &element) continue;  // readers find the first element of a name
        for (const auto& subItem : element.m_vItems) {
            if (++walks > 20) return 0;  // each walk is linear in the file, but their number is not limited
            WalkItem(data, element, subItem->m_sName);
            if (file.GetFormat() == CPLYFile::kAscii) continue;
            (void)ErrorOf([&] { ReadView(data, element, subItem->m_sName); });
        }
    }
    return 0;
}

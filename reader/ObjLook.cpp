// One pass over the lines.
#include "ObjLook.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "NumberWords.h"

namespace {

/// Whether the next numbers of the line are finite. What is no number is left to the library, which refuses it.
bool AreFinite(NumberWords& words) {
    for (int i = 0; i < 3 && words.NextOfLine(); ++i) {
        double value = 0;
        if (words.Number(value) && !std::isfinite(value)) return false;
    }
    return true;
}

/// What follows the current word in its line: a name may have blanks.
std::string RestOfLine(std::string_view text, const NumberWords& words) {
    constexpr std::string_view kBlanks = " \t\v\f";
    text.remove_prefix(static_cast<std::size_t>(words.Word().data() - text.data()) + words.Word().size());
    text = text.substr(0, text.find_first_of("\r\n"));
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    return std::string(text.substr(0, text.find_last_not_of(kBlanks) + 1));
}

}  // namespace

ObjLook LookAtObj(std::string_view text) {
    ObjLook look;
    for (NumberWords words(text); words.Next(); words.SkipLine()) {
        if (words.Is("f"))
            look.hasFaces = true;
        else if (words.Is("usemtl"))
            look.usesMaterials = true;
        else if (words.Is("mtllib"))
            look.materialFiles.push_back(RestOfLine(text, words));
        else if (words.Is("v") && look.notFinite.empty() && !AreFinite(words))
            look.notFinite = words.NoNumber().what();
    }
    return look;
}

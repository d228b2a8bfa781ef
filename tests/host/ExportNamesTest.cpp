// Names of files for objects that are exported together.
#include "ExportNames.h"

#include <gtest/gtest.h>

namespace {

TEST(ExportNames, HaveTheExtensionOfTheFormatInPlaceOfAKnownOne) {
    EXPECT_EQ(ExportNames({"a.pcm", "b", "tooth 1.5", "c.STL"}, "ply"),
              (QStringList{"a.ply", "b.ply", "tooth 1.5.ply", "c.ply"}));
}

TEST(ExportNames, AreUniqueWhateverTheCaseOfTheirLetters) {
    EXPECT_EQ(ExportNames({"a.pcm", "A.pax", "a.stl", "a (2)"}, "stl"),
              (QStringList{"a.stl", "A (2).stl", "a (3).stl", "a (2) (2).stl"}));
}

TEST(ExportNames, LeadToNoOtherFolder) {
    EXPECT_EQ(ExportNames({"../a", "/etc/b", "..", ".hidden", "", "c\nd"}, "ply"),
              (QStringList{"_._a.ply", "_etc_b.ply", "_..ply", "_hidden.ply", "object.ply", "c_d.ply"}));
}

}  // namespace

// The measurement library's reason for a refused file, and the general sentence for a library without reasons.
#include "io/MeasurementReason.h"

#include <gtest/gtest.h>

namespace {

constexpr char kGeneral[] = "not a readable pcm file, or damaged";

template <const char* const* kText>
void* LibraryThatSays(const char* name) {
    EXPECT_STREQ(name, "MsrLastReason");
    return reinterpret_cast<void*>(+[]() -> const char* { return *kText; });
}
constexpr const char* kReason = "a section is damaged";
constexpr const char* kNoText = "";
constexpr const char* kNull = nullptr;

}  // namespace

TEST(MeasurementReason, IsThatOfTheLibrary) {
    EXPECT_EQ(LastMeasurementReason(&LibraryThatSays<&kReason>), "a section is damaged");
}

TEST(MeasurementReason, IsTheGeneralSentenceForALibraryWithoutTheFunction) {
    EXPECT_EQ(LastMeasurementReason([](const char*) -> void* { return nullptr; }), kGeneral);
}

TEST(MeasurementReason, IsTheGeneralSentenceForAnEmptyText) {
    EXPECT_EQ(LastMeasurementReason(&LibraryThatSays<&kNoText>), kGeneral);
    EXPECT_EQ(LastMeasurementReason(&LibraryThatSays<&kNull>), kGeneral);
}

TEST(MeasurementReason, FindsExportedFunctionsOnly) {
    EXPECT_NE(FindLoadedSymbol("malloc"), nullptr);
    EXPECT_EQ(FindLoadedSymbol("MsrNoSuchFunction"), nullptr);
}

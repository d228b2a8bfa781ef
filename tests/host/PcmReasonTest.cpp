#include "PcmReason.h"

#include <gtest/gtest.h>

#include "KV_ScenePane/PathText.h"
#include "MSRDLL/Msr.h"
#include "MessageTable.h"
#include "host/ScanFiles.h"

namespace {

TEST(LastPcmReason, IsThatOfTheLastLoadOnThisThread) {
    const ScratchFolder folder;
    MsrStorage::MSR scan;
    for (const DamagedPcm& file : WriteDamagedPcms(folder)) {
        EXPECT_FALSE(scan.Load(KV_ScenePane::WidePath(file.path).c_str(), false, true, false));
        EXPECT_EQ(PlainWords(LastPcmReason()), file.reason);
    }
}

TEST(LastPcmReason, IsAGeneralSentenceForALibraryWithoutReasons) {
    EXPECT_EQ(LastPcmReason([](const char* name) -> void* {
                  EXPECT_STREQ(name, "MsrLastReason");
                  return nullptr;
              }),
              "not a pcm file, or a damaged one");
}

const char* NoReason() { return nullptr; }
const char* EmptyReason() { return ""; }

TEST(LastPcmReason, IsAGeneralSentenceForALibraryThatReturnsNoText) {
    EXPECT_EQ(LastPcmReason([](const char*) { return reinterpret_cast<void*>(&NoReason); }), kNoPcmReason);
    EXPECT_EQ(LastPcmReason([](const char*) { return reinterpret_cast<void*>(&EmptyReason); }), kNoPcmReason);
}

}  // namespace

// The component registry as a host starts and stops it.
#include <gtest/gtest.h>

#include "KV_Components/Image.h"
#include "platform/ComponentRegistry.h"
#include "support/ControlFixture.h"

namespace {

bool IsStarted() { return CreateComponent(KvComponents::image::kFactory, KvComponents::image::kInterface) != nullptr; }

TEST(ComponentMethods, OnlyTheseStartAndStopTheRegistry) {
    {
        NoPictureControl control;
        EXPECT_FALSE(IsStarted()) << "a control by itself does not start it";
        control->InitializeKVReg();
        EXPECT_TRUE(IsStarted());
        control->FinalizeKVReg();
        EXPECT_FALSE(IsStarted());
        control->InitializeKVReg();
    }
    EXPECT_TRUE(IsStarted()) << "the end of a control does not stop it";
    NoPictureControl other;
    other->FinalizeKVReg();
    EXPECT_FALSE(IsStarted());
}

TEST(ComponentMethods, StartsOfSeveralControlsAreCountedTogether) {
    NoPictureControl one, two;
    one->InitializeKVReg();
    two->InitializeKVReg();
    one->FinalizeKVReg();
    EXPECT_TRUE(IsStarted());
    two->FinalizeKVReg();
    EXPECT_FALSE(IsStarted());
    two->FinalizeKVReg();  // once too often
    one->InitializeKVReg();
    EXPECT_TRUE(IsStarted());
    one->FinalizeKVReg();
}

}  // namespace

// Mesh files that other programs wrote. They are no part of this tree: KV_SAMPLES_DIR of the configure step names their
// folder.
#pragma once
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

/// For tests of the sample files: skipped where the build has none.
class SampleFiles : public testing::Test {
protected:
    void SetUp() override {
        if (std::string(KV_SAMPLES_DIR).empty()) GTEST_SKIP() << "configured without sample files";
        ASSERT_TRUE(std::filesystem::is_directory(kFolder)) << kFolder;
    }
    /// With a slash at the end.
    static inline const std::string kFolder = KV_SAMPLES_DIR "/meshes/";
};

// Runs the example that reads the masks of cuts: what it prints.
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>

namespace {

/// What the example writes to its standard output; its exit status must be 0.
std::string OutputOfTheExample() {
    struct Close {
        void operator()(FILE* pipe) const { EXPECT_EQ(pclose(pipe), 0); }
    };
    const std::unique_ptr<FILE, Close> pipe(popen("'" CUT_MASK_HOST "'", "r"));
    std::string text;
    char part[4096];
    while (fgets(part, sizeof part, pipe.get()) != nullptr) text += part;
    return text;
}

TEST(CutMaskHost, PrintsWhatTheMasksHold) {
    // The first lasso has its corners at 50 and 150, 25 and 75: 100 x 50 pixels. The second one is half of 20 x 10
    // pixels: row y has 19 - 2 y of them.
    EXPECT_EQ(OutputOfTheExample(),
              "cut: kind 0, window 200 x 100, 5000 pixels in 50 25 150 75\n"
              "0 depths\n"
              "cut: kind 1, window 200 x 100, 100 pixels in 0 0 20 10\n"
              "0 depths\n"
              "2 masks\n"
              "point 0 is removed\n");
}

}  // namespace

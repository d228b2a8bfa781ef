// Runs the example that aligns two meshes: what it prints.
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
    const std::unique_ptr<FILE, Close> pipe(popen("'" ALIGNMENT_HOST "'", "r"));
    std::string text;
    char part[4096];
    while (fgets(part, sizeof part, pipe.get()) != nullptr) text += part;
    return text;
}

TEST(AlignmentHost, AlignsByPairsAndByPickedPoints) {
    // 300 pixels show the diagonal of a box of 50 x 20 x 9 units, so that a pixel is 0.18 units wide. A click is half a
    // pixel off at most in x and in y, a pair of them 0.26 units.
    EXPECT_EQ(OutputOfTheExample(),
              "by pairs: found, 4 pairs, largest residual below 0.5\n"
              " 0 -1 0 30\n"
              " 1 0 0 0\n"
              " 0 0 1 5\n"
              "pick on the moving mesh: 3 and 0 points\n"
              "pick on the fixed mesh: 3 and 0 points\n"
              "pick on the fixed mesh: 3 and 1 points\n"
              "pick on the fixed mesh: 3 and 2 points\n"
              "AlignmentDone\n"
              "no alignment: 0 and 0 points\n"
              "by picked points: found, 3 pairs, largest residual below 0.5\n"
              " 0 -1 0 30\n"
              " 1 0 0 0\n"
              " 0 0 1 5\n");
}

}  // namespace

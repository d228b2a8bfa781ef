#include "NaturalOrder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

TEST(NaturalLess, OrdersNamesAsAPersonCounts) {
    const std::vector<std::string> ordered = {"",
                                              "a",
                                              "a01",
                                              "a1",
                                              "a2b",
                                              "a2b1",
                                              "a2b10",
                                              "a10",
                                              "B",
                                              "b",
                                              "scan2",
                                              "scan9.pcm",
                                              "scan10.pcm",
                                              "scan10a",
                                              "scan18446744073709551616",
                                              "scan18446744073709551617",
                                              "\xff"};
    for (std::size_t i = 0; i < ordered.size(); ++i) {
        for (std::size_t j = 0; j < ordered.size(); ++j)
            EXPECT_EQ(NaturalLess(ordered[i], ordered[j]), i < j) << ordered[i] << " and " << ordered[j];
    }
}

}  // namespace

// Every file name survives the conversion to a wide string and back.
#include "KV_ScenePane/PathText.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

using KV_ScenePane::PathBytes;
using KV_ScenePane::WidePath;

namespace {

TEST(PathText, DecodesTextOfAllLengths) {
    EXPECT_EQ(WidePath("scan.pcm"), L"scan.pcm");
    EXPECT_EQ(WidePath("z\xC3\xA4hne/\xE2\x82\xAC/\xF0\x9F\xA6\xB7"), std::wstring(L"z\u00E4hne/\u20AC/\U0001F9B7"));
    EXPECT_EQ(WidePath(""), L"");
}

TEST(PathText, KeepsEveryPairOfBytes) {
    for (int first = 1; first < 256; ++first)
        for (int second = 1; second < 256; ++second) {
            const std::string name{static_cast<char>(first), static_cast<char>(second)};
            ASSERT_EQ(PathBytes(WidePath(name)), name) << first << ' ' << second;
        }
}

TEST(PathText, KeepsRandomBytes) {
    std::mt19937 random(7);
    for (int round = 0; round < 20'000; ++round) {
        std::string name(random() % 12, '\0');
        // mostly bytes of multi-byte sequences, so that valid, broken and overlong ones all occur
        for (char& byte : name)
            byte = static_cast<char>(random() % 3 == 0 ? 1 + random() % 255 : 0x80 + random() % 128);
        ASSERT_EQ(PathBytes(WidePath(name)), name);
    }
}

struct BadSequence {
    const char* name;
    std::string bytes;
};
void PrintTo(const BadSequence& row, std::ostream* out) { *out << row.name; }

class WidePathTakesByteByByte : public testing::TestWithParam<BadSequence> {};

TEST_P(WidePathTakesByteByByte, WhatIsNotValidUtf8) {
    std::wstring expected;
    for (const char byte : GetParam().bytes)
        expected.push_back(static_cast<wchar_t>(0xDC00 + static_cast<unsigned char>(byte)));
    EXPECT_EQ(WidePath(GetParam().bytes), expected);
}

INSTANTIATE_TEST_SUITE_P(PathText, WidePathTakesByteByByte,
                         testing::Values(BadSequence{"LoneContinuation", "\x80"},
                                         BadSequence{"OverlongSlash", "\xC0\xAF"},
                                         BadSequence{"OverlongOfThree", "\xE0\x80\xAF"},
                                         BadSequence{"Surrogate", "\xED\xB2\x80"},
                                         BadSequence{"BeyondTheLastCodePoint", "\xF4\x90\x80\x80"},
                                         BadSequence{"CutShort", "\xE2\x82"}, BadSequence{"Latin1", "\xE4"}),
                         [](const auto& row) { return row.param.name; });

TEST(PathText, GivesAQuestionMarkForWhatNoFileNameHolds) {
    EXPECT_EQ(PathBytes(std::wstring{static_cast<wchar_t>(0xD800), L'a'}), "?a");
    EXPECT_EQ(PathBytes(std::wstring{static_cast<wchar_t>(0x110000)}), "?");
}

}  // namespace

// Names of files in the title.
#include "WindowTitle.h"

#include <gtest/gtest.h>

namespace {

TEST(WindowTitle, NamesTheFileAndTheProgramAfterIt) {
    EXPECT_EQ(WindowTitle({}).toStdString(), "scenepane[*]");
    EXPECT_EQ(WindowTitle({"/scans/part.pcm"}).toStdString(), "part.pcm[*] - scenepane");
    EXPECT_EQ(WindowTitle({"part.pcm"}).toStdString(), "part.pcm[*] - scenepane");
}

TEST(WindowTitle, CountsTheOtherFiles) {
    EXPECT_EQ(WindowTitle({"/a/part.pcm", "/a/b.pcm", "/c/part.pcm"}).toStdString(),
              "part.pcm and 2 more[*] - scenepane");
    EXPECT_EQ(WindowTitle({"/a/part.pcm", "/a/part.pcm"}).toStdString(), "part.pcm[*] - scenepane")
        << "one file that is open twice";
}

TEST(WindowTitle, ShowsWhatQtWouldReadAsTheMarkOrAsAPlace) {
    EXPECT_EQ(WindowTitle({"a[*].pcm", "b"}).toStdString(), "a[*][*].pcm and 1 more[*] - scenepane");
    EXPECT_EQ(WindowTitle({"%1 %2 100%.pcm", "b"}).toStdString(), "%1 %2 100%.pcm and 1 more[*] - scenepane");
    EXPECT_EQ(WindowTitle({"two\nlines.pcm"}).toStdString(), "two lines.pcm[*] - scenepane");
}

}  // namespace

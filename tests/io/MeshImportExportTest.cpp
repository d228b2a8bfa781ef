// Which reader and writer ImportMesh and ExportMesh select. A missing file is enough for that: the reason of each
// reader is different.
#include <gmock/gmock.h>

#include <string>
#include <utility>

#include "KV_ScenePane/PathText.h"
#include "support/ControlFixture.h"
#include "support/ScratchFolder.h"

namespace {

using KV_ScenePane::WidePath;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char kEmptyPath[] = "the path is empty";
constexpr char kUnknownType[] = "unknown file type, not one of stl, ois, msh, ply and hps";

struct OtherExtension {
    const char* name;
    const wchar_t* path;
    const char* file;  // in the line
    const char* reason;
};
void PrintTo(const OtherExtension& row, std::ostream* out) { *out << row.name; }

const OtherExtension kOtherExtensions[] = {
    {"Null", nullptr, "(no file)", kEmptyPath},
    {"Empty", L"", "(no file)", kEmptyPath},
    {"Unknown", L"no/such/a.obj", "no/such/a.obj", kUnknownType},
    {"PointAtTheEnd", L"no/such/a.ply.", "no/such/a.ply.", kUnknownType},
    {"NoPointButANameThatEndsLikeOne", L"no/such/aply", "no/such/aply", kUnknownType},
    {"PointInAFolderAlone", L"no.ply/such", "no.ply/such", kUnknownType},
    {"BlankBehind", L"no/such/a.ply ", "no/such/a.ply ", kUnknownType},
    {"AMeasurement", L"no/such/a.pcm", "no/such/a.pcm", kUnknownType},
    // Some locales have other capitals for some letters; this letter is not an s in any locale.
    {"ALetterThatOnlyLooksAlike", L"no/such/a.\u017Ftl", "no/such/a.\xC5\xBFtl", kUnknownType},
};

class OtherExtensions : public testing::TestWithParam<OtherExtension> {};

TEST_P(OtherExtensions, ImportNothingWithOneLine) {
    NoPictureControl c;
    EXPECT_NO_THROW(c->ImportMesh(GetParam().path));
    EXPECT_EQ(c->GetNumObjects(), 0);
    EXPECT_EQ(c.debugOutput.Text(), std::string("ImportMesh(): ") + GetParam().file + ": " + GetParam().reason + "\n");
    EXPECT_EQ(c.window->waitCursorsBegun, 1);
    EXPECT_EQ(c.window->waitCursorsEnded, 1);
}

TEST_P(OtherExtensions, ExportNothingWithoutAMessage) {
    NoPictureControl c;
    AddMesh(*c, {{}, {}, {}}, {{{0, 1, 2}}});
    EXPECT_NO_THROW(c->ExportMesh(0, GetParam().path));
    EXPECT_THAT(c.debugOutput.Text(), IsEmpty());
    EXPECT_EQ(c.window->waitCursorsBegun, 0);
}

INSTANTIATE_TEST_SUITE_P(MeshFiles, OtherExtensions, testing::ValuesIn(kOtherExtensions),
                         [](const auto& row) { return row.param.name; });

/// The reason for refusing a missing file, thrown or in the debugger output.
std::string ComplaintAbout(const std::wstring& path) {
    NoPictureControl c;
    c->InitializeKVReg();
    std::string thrown;
    try {
        c->ImportMesh(path.c_str());
    } catch (const std::exception& error) {
        thrown = error.what();
    }
    c->FinalizeKVReg();
    EXPECT_EQ(c->GetNumObjects(), 0) << thrown;
    return thrown + c.debugOutput.Take();
}

TEST(ImportMesh, ChoosesTheReaderByTheExtensionInAnyCase) {
    const std::pair<const wchar_t*, const char*> signs[] = {
        {L"stl", "ImportStl()"}, {L"STL", "ImportStl()"}, {L"ois", "ImportOis()"},      {L"Ois", "ImportOis()"},
        {L"msh", "ImportMsh()"}, {L"mSH", "ImportMsh()"}, {L"ply", "Magic number"},     {L"PLY", "Magic number"},
        {L"hps", "ImportHps()"}, {L"HpS", "ImportHps()"}, {L"stl.ply", "Magic number"}, {L"ply.stl", "ImportStl()"}};
    for (const auto& [extension, sign] : signs)
        EXPECT_THAT(ComplaintAbout(std::wstring(L"no/such/a.") + extension), HasSubstr(sign));
    // Without a point the whole path is the extension.
    EXPECT_THAT(ComplaintAbout(L"STL"), HasSubstr("ImportStl()"));
    EXPECT_THAT(ComplaintAbout(L"ply"), HasSubstr("Magic number"));
}

TEST(ExportMesh, WritesAPlyWhateverTheCaseOfItsExtension) {
    const ScratchFolder folder;
    NoPictureControl c;
    AddMesh(*c, {{}, {}, {}}, {{{0, 1, 2}}});
    for (const char* name : {"a.ply", "b.PLY", "c.x.Ply", ".ply"}) {
        c->ExportMesh(0, WidePath(folder / name).c_str());
        const auto bytes = ReadBytes(folder / name);
        ASSERT_GT(bytes.size(), 4u) << name;
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(bytes.data()), 4), "ply\n") << name;
    }
    EXPECT_EQ(folder.FileCount(), 4u);
    EXPECT_THAT(c.debugOutput.Text(), IsEmpty());
}

TEST(ExportMesh, ShowsNoWaitCursorAndAsksForNoRepaint) {
    const ScratchFolder folder;
    NoPictureControl c;
    AddMesh(*c, {{}, {}, {}}, {{{0, 1, 2}}});
    c->ExportMesh(0, WidePath(folder / "a.ply").c_str());
    EXPECT_EQ(c.window->waitCursorsBegun, 0);
    EXPECT_EQ(c.window->refreshes + c.window->invalidates + c.window->eraseInvalidates, 0);
}

}  // namespace

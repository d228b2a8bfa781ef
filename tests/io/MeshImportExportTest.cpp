// Which reader and writer ImportMesh and ExportMesh choose. A file that is not there is enough for that: each reader
// complains in its own way.
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

struct OtherExtension {
    const char* name;
    const wchar_t* path;
};
void PrintTo(const OtherExtension& row, std::ostream* out) { *out << row.name; }

const OtherExtension kOtherExtensions[] = {
    {"Null", nullptr},
    {"Empty", L""},
    {"Unknown", L"no/such/a.obj"},
    {"PointAtTheEnd", L"no/such/a.ply."},
    {"NoPointButANameThatEndsLikeOne", L"no/such/aply"},
    {"PointInAFolderAlone", L"no.ply/such"},
    {"BlankBehind", L"no/such/a.ply "},
    {"AMeasurement", L"no/such/a.pcm"},
    // Under some locales the capital of i is another letter; under none is this an s.
    {"ALetterThatOnlyLooksAlike", L"no/such/a.\u017Ftl"},
};

class OtherExtensions : public testing::TestWithParam<OtherExtension> {};

TEST_P(OtherExtensions, ImportNothingAndSayNothing) {
    NoPictureControl c;
    EXPECT_NO_THROW(c->ImportMesh(GetParam().path));
    EXPECT_EQ(c->GetNumObjects(), 0);
    EXPECT_THAT(c.debugOutput.Text(), IsEmpty());
    EXPECT_EQ(c.window->waitCursorsBegun, 1);
    EXPECT_EQ(c.window->waitCursorsEnded, 1);
}

TEST_P(OtherExtensions, ExportNothingAndSayNothing) {
    NoPictureControl c;
    AddMesh(*c, {{}, {}, {}}, {{{0, 1, 2}}});
    EXPECT_NO_THROW(c->ExportMesh(0, GetParam().path));
    EXPECT_THAT(c.debugOutput.Text(), IsEmpty());
    EXPECT_EQ(c.window->waitCursorsBegun, 0);
}

INSTANTIATE_TEST_SUITE_P(MeshFiles, OtherExtensions, testing::ValuesIn(kOtherExtensions),
                         [](const auto& row) { return row.param.name; });

/// What the import of a file that is not there says, thrown or not.
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
    // Without a point in it the whole path counts.
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

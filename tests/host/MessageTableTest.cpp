#include "MessageTable.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTranslator>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "CutSaveReport.h"

namespace {

struct Words {
    const char* name;
    const char* text;
    const char* sentence;
};
void PrintTo(const Words& row, std::ostream* out) { *out << row.name; }

const Words kWords[] = {
    {"AFixedText", "Magic number in PLY header not found.", "this is no ply file, whatever its name says"},
    {"AFunctionName", "CPLYFile::Read(): Unknown file format.", "this is no ply file, whatever its name says"},
    {"ANumber", "no pixel passes the confidence limit 0.5",
     "no point is left: none has the confidence 0.5: lower the limit of the import"},
    {"TwoNumbers", "A window of 40000 x 20 pixels is too large",
     "an area of 40000 x 20 pixels is larger than the driver can draw: choose a smaller one"},
    {"APlaceThatTheSentenceDrops", "triangle 3 refers to vertex 9 of 8",
     "the file is damaged: copy or export it again from its source"},
    {"APositionIsKept", "a section is damaged (XYZ at byte 200)",
     "the file is damaged: copy or export it again from its source (XYZ at byte 200)"},
    {"TheLineAboutAGridWithoutTriangles", "SetScanData(): CreateInternalMesh() returned nullptr",
     "no triangle is left of the scan: import with a smaller skip or a lower confidence limit"},
    {"ANumberThatIsNotFinite", "Float expected, but found this: nan",
     "a number in the ply file is not finite: export it again without such vertices, or as binary ply"},
    {"ATextInPlaceOfANumber", "Float expected, but found this: one",
     "the file is damaged: there is \"one\" in place of a number"},
    {"AWordOfTheHeader", "Error in grammar at token 0: \"element\" expected.",
     "the header of the ply file has a line that is not read, as one with obj_info: export it again without such "
     "lines"},
    {"ATypeOfTheHeader", "Error in grammar at token 10: invalid property type \"half\"",
     "the ply file has values of the type half, which is not read: export it again with float coordinates"},
    {"ACountOfTheHeader", "Error in grammar at token 14: element count expected (integer)",
     "the header of the ply file does not say how many points or faces follow: export it again from its source"},
    {"OneCoordinate", "1 coordinates are not finite",
     "one coordinate is not finite: triangles may be missing there: export the file again from its source"},
    {"TwoCoordinates", "2 coordinates are not finite",
     "2 coordinates are not finite: triangles may be missing there: export the file again from its source"},
    {"AFileThatWasCutOff", "768 of 1280 triangles are in the file",
     "768 of 1280 triangles are in the file, the rest was cut off: copy or export it again from its source"},
    {"AFullDisk", "cannot write: No space left on device",
     "the disk is full: free some space or choose another folder"},
    {"AnUnknownText", "flux capacitor at 88", "flux capacitor at 88"},
    {"AnUnknownTextWithPosition", "flux capacitor (at 88)", "flux capacitor (at 88)"},
    {"AKnownTextInsideALongerOne", "the header is damaged badly", "the header is damaged badly"},
    {"ANumberThatIsMissing", "no pixel passes the confidence limit ", "no pixel passes the confidence limit "},
    {"Nothing", "", ""},
};
class WordsOf : public testing::TestWithParam<Words> {};

TEST_P(WordsOf, ALineAreItsSentence) { EXPECT_EQ(PlainWords(GetParam().text), GetParam().sentence); }
INSTANTIATE_TEST_SUITE_P(MessageTable, WordsOf, testing::ValuesIn(kWords),
                         [](const auto& row) { return row.param.name; });

TEST(MessageTable, EveryTextHasOneRow) {
    std::set<std::string> texts;
    for (const MessageRow& row : MessageRows()) EXPECT_TRUE(texts.insert(row.text).second) << row.text;
    EXPECT_GT(texts.size(), 80u);
}

// The text with its own places as their content is matched by no earlier row.
TEST(MessageTable, NoRowIsHiddenByAnEarlierOne) {
    for (const MessageRow& row : MessageRows()) {
        const std::vector<std::string> parts(9, "7");
        EXPECT_EQ(PlainWords(FilledSentence(row.text, parts)), FilledSentence(row.sentence, parts)) << row.text;
    }
}

// A sentence ends up before "; " and in front of a message, so it has neither the separator nor a full stop.
TEST(MessageTable, SentencesHaveNoSeparatorAndNoFullStop) {
    for (const MessageRow& row : MessageRows()) {
        const std::string sentence = row.sentence;
        EXPECT_EQ(sentence.find("; "), std::string::npos) << sentence;
        EXPECT_NE(sentence.back(), '.') << sentence;
        EXPECT_EQ(sentence.find("nullptr"), std::string::npos) << sentence;
        EXPECT_EQ(sentence.find("()"), std::string::npos) << sentence;
    }
}

TEST(MessageTable, LinesAreJoinedToOne) {
    EXPECT_EQ(PlainLines("header is damaged\n\nCLog::Open(): new\n"),
              "the file is damaged: copy or export it again from its source; new");
}

/// A language in which every sentence is in capitals, but for its places.
class Capitals : public QTranslator {
public:
    QString translate(const char* context, const char* source, const char*, int) const override {
        return std::string_view(context) == "Messages" ? QString(source).toUpper() : QString();
    }
    [[nodiscard]] bool isEmpty() const override { return false; }
};

class TranslatedMessages : public testing::Test {
protected:
    int m_nArguments = 1;
    char m_name[5] = "test";
    char* m_arguments[2] = {m_name, nullptr};
    QCoreApplication m_application{m_nArguments, m_arguments};
    Capitals m_capitals;
    void SetUp() override { ASSERT_TRUE(QCoreApplication::installTranslator(&m_capitals)); }
};

TEST_F(TranslatedMessages, AreEachSentenceOfALineWithItsParts) {
    EXPECT_EQ(TranslatedWords(PlainWords("a section is damaged (XYZ at byte 200)")),
              "THE FILE IS DAMAGED: COPY OR EXPORT IT AGAIN FROM ITS SOURCE (XYZ at byte 200)");
    EXPECT_EQ(TranslatedWords(PlainLines("no pixel passes the confidence limit 0.5\nflux\nits grid has no pixel")),
              "NO POINT IS LEFT: NONE HAS THE CONFIDENCE 0.5: LOWER THE LIMIT OF THE IMPORT; flux; "
              "THE SCAN IS EMPTY: ITS GRID HAS NO POINTS");
    EXPECT_EQ(TranslatedWords("flux capacitor"), "flux capacitor");
}

TEST_F(TranslatedMessages, AreThoseOfTheProgramItself) {
    for (const char* const sentence : {kNoSuchFile, kIsFolder, kEmptyFolder, kFullFolder, kNoNeedles})
        EXPECT_EQ(TranslatedWords(sentence), QString(sentence).toUpper().toStdString());
}

TEST_F(TranslatedMessages, AreThoseOfCutsThatAreSaved) {
    using namespace KV_ScenePane;
    struct Line {
        CutSaveOutcome outcome;
        const char* reason;
        bool isNothingLeft;
        const char* expected;
    };
    const Line lines[] = {
        {CutWritten, "", false, "a.pcm: WRITTEN"},
        {CutWritten, "", true, "a.pcm: WRITTEN, NO POINT IS LEFT IN IT"},
        {CutNothingToSave, "", false, "a.pcm: SKIPPED, NOTHING NEW WAS CUT FROM IT"},
        {CutNotFromPcm, "", false, "a.pcm: SKIPPED, ONLY PCM FILES CAN HOLD CUTS"},
        {CutFileNotRead, "", false, "a.pcm: FAILED, THE FILE COULD NOT BE READ"},
        {CutFileNotRead, "flux", false, "a.pcm: FAILED, THE FILE COULD NOT BE READ: flux"},
        {CutFileNotWritten, "", false, "a.pcm: FAILED, THE FILE COULD NOT BE WRITTEN AND IS AS BEFORE"},
        {CutFileNotWritten, "flux", false, "a.pcm: FAILED, THE FILE COULD NOT BE WRITTEN AND IS AS BEFORE: flux"},
    };
    CutSaveEntry entry;
    entry.file = L"a.pcm";
    for (const Line& line : lines) {
        entry.outcome = line.outcome;
        entry.reason = line.reason;
        entry.isNothingLeft = line.isNothingLeft;
        EXPECT_EQ(TranslatedWords(CutSaveLine(entry)), line.expected);
    }
    entry.outcome = CutToBeWritten;
    entry.isMoved = true;
    EXPECT_EQ(TranslatedWords(MovedObjectLines({&entry, 1}).front()),
              "a.pcm: MOVED SINCE ITS IMPORT, TAKE BACK THE ALIGNMENT FIRST");
    entry.isCutWhileMoved = true;
    EXPECT_EQ(TranslatedWords(MovedObjectLines({&entry, 1}).front()),
              "a.pcm: WAS CUT WHILE IT WAS MOVED; UNDO THESE CUTS, TAKE BACK THE ALIGNMENT FIRST, AND CUT AGAIN");
    for (const std::string& sentence : OtherRemovals(true, 0.5f))
        EXPECT_EQ(TranslatedWords(sentence), QString::fromStdString(sentence).toUpper().toStdString());
}

TEST_F(TranslatedMessages, AreThoseOfEveryRow) {
    for (const MessageRow& row : MessageRows()) {
        const std::vector<std::string> parts(9, "7");
        const std::string sentence = FilledSentence(row.sentence, parts);
        EXPECT_EQ(TranslatedWords(sentence), QString::fromStdString(sentence).toUpper().toStdString());
    }
}

}  // namespace

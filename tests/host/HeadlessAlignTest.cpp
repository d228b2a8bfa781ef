// --align, and stored transforms in the runs without a window.
#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <array>
#include <cmath>
#include <filesystem>
#include <sstream>

#include "TransformFile.h"
#include "host/HeadlessRuns.h"
#include "host/MeshFiles.h"
#include "host/ScanFiles.h"
#include "simulate-scans/Run.h"

namespace {

constexpr Matrix4 kIdentity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
constexpr Matrix4 kUp = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 5, 0, 0, 0, 1};
/// A quarter turn about Z, and a translation.
constexpr Matrix4 kTurned = {0, -1, 0, 10, 1, 0, 0, -20.5f, 0, 0, 1, 0.125f, 0, 0, 0, 1};

using Doubles = std::vector<double>;

Doubles NumbersOf(const QJsonValue& value) {
    Doubles numbers;
    for (const QJsonValue& number : value.toArray()) numbers.push_back(number.toDouble(NAN));
    return numbers;
}

QJsonObject JsonOf(const std::string& text) {
    const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(text));
    EXPECT_TRUE(document.isObject()) << text;
    return document.object();
}

/// The largest difference of any two numbers; infinite for lists of different lengths.
double Difference(const auto& a, const auto& b) {
    if (a.size() != b.size()) return INFINITY;
    double difference = 0;
    for (std::size_t i = 0; i < a.size(); ++i) difference = std::max(difference, std::abs(double{a[i]} - double{b[i]}));
    return difference;
}

using Rows = std::array<double, 16>;

Rows Product(const auto& a, const auto& b) {
    Rows product{};
    for (std::size_t row = 0; row < 4; ++row)
        for (std::size_t column = 0; column < 4; ++column)
            for (std::size_t k = 0; k < 4; ++k)
                product[4 * row + column] += double{a[4 * row + k]} * double{b[4 * k + column]};
    return product;
}

/// Two flat grids, 11 x 11 points from (0, 0, 0) to (10, 10, 0).
class Alignment : public testing::Test {
protected:
    void SetUp() override {
        unsetenv("DISPLAY");
        WriteXdt(m_folder / "a.xdt", 11, 11);
        WriteXdt(m_folder / "b.xdt", 11, 11);
        m_options.pairFile = m_folder / "pairs.txt";
        m_options.movingFiles = {m_folder / "a.xdt"};
        m_options.fixedFiles = {m_folder / "b.xdt"};
        m_options.json = true;
        Pairs("0 0 0 1 2 3\n10 0 0 11 2 3\n0 10 0 1 12 3\n10 10 0 11 12 3\n");
    }
    void Pairs(const std::string& text) const { WriteText(m_options.pairFile, text); }
    /// Runs, and returns what was printed.
    [[nodiscard]] std::string Align(int status = kExitGood, const std::string& errors = "") const {
        const Printed out, err;
        EXPECT_EQ(RunAlign(m_options, out, err), status);
        EXPECT_EQ(err.Text(), errors);
        return out.Text();
    }
    [[nodiscard]] std::vector<StoredTransform> Saved() const {
        std::vector<StoredTransform> saved;
        std::string reason;
        EXPECT_TRUE(ReadTransformFile(m_options.savedTransforms, &saved, &reason)) << reason;
        return saved;
    }
    void Store(const std::vector<StoredTransform>& transforms) {
        m_options.transformFile = m_folder / "stored.json";
        std::string reason;
        ASSERT_TRUE(WriteTransformFile(m_options.transformFile, transforms, &reason)) << reason;
    }

    ScratchFolder m_folder;
    HostOptions m_options;
};

// ---- what is printed

TEST_F(Alignment, PrintsTheTransformOfMovingPointsToFixedOnes) {
    const QJsonObject json = JsonOf(Align());
    EXPECT_EQ(json.keys(), (QStringList{"residuals", "rms", "transform"}));
    const Matrix4 expected = {1, 0, 0, 1, 0, 1, 0, 2, 0, 0, 1, 3, 0, 0, 0, 1};
    EXPECT_LT(Difference(NumbersOf(json["transform"]), expected), 1e-12);
    EXPECT_LT(Difference(NumbersOf(json["residuals"]), Doubles{0, 0, 0, 0}), 1e-12);
    EXPECT_LT(json["rms"].toDouble(NAN), 1e-12);
}

TEST_F(Alignment, PrintsTheResidualOfEachPair) {
    // The fixed points are the moving ones, stretched about their centre: identity, and 0.5 or 1 at each point.
    Pairs("# stretched\n1,0,0, 1.5,0,0\n-1,0,0, -1.5,0,0\n\n0,2,0, 0,3,0\n0,-2,0, 0,-3,0\n");
    const QJsonObject json = JsonOf(Align());
    EXPECT_LT(Difference(NumbersOf(json["transform"]), kIdentity), 1e-12);
    EXPECT_LT(Difference(NumbersOf(json["residuals"]), Doubles{0.5, 0.5, 1, 1}), 1e-12);
    EXPECT_NEAR(json["rms"].toDouble(), std::sqrt(0.625), 1e-12);
}

TEST_F(Alignment, PrintsJsonOnOneLineWithoutBlanks) {
    const std::string json = Align();
    EXPECT_EQ(json.find(' '), std::string::npos) << json;
    EXPECT_EQ(json.find('\n'), json.size() - 1) << json;
    EXPECT_EQ(json.find("{\"transform\":["), 0u) << json;
    EXPECT_NE(json.find("],\"residuals\":["), std::string::npos) << json;
    EXPECT_NE(json.find("],\"rms\":"), std::string::npos) << json;
}

TEST_F(Alignment, PrintsTheSameNumbersAsTextForAReader) {
    const QJsonObject json = JsonOf(Align());
    m_options.json = false;
    std::istringstream text(Align());
    Doubles transform, residuals;
    std::string word;
    double number = 0;
    EXPECT_TRUE(text >> word && word == "transform");
    for (int i = 0; i < 16 && text >> number; ++i) transform.push_back(number);
    EXPECT_EQ(transform, NumbersOf(json["transform"]));
    for (int i = 1, index = 0; i <= 4; ++i) {
        EXPECT_TRUE(text >> word >> index >> number) << i;
        EXPECT_EQ(word, "residual");
        EXPECT_EQ(index, i);
        residuals.push_back(number);
    }
    EXPECT_EQ(residuals, NumbersOf(json["residuals"]));
    EXPECT_TRUE(text >> word >> number && word == "rms");
    EXPECT_EQ(number, json["rms"].toDouble());
}

TEST_F(Alignment, TurnsTheNormalOfASinglePair) {
    // From +Z to +X: a quarter turn about Y, then from (0, 0, 0) to (7, 0, 0).
    Pairs("0 0 0 0 0 2 7 0 0 3 0 0\n");
    const QJsonObject json = JsonOf(Align());
    const Matrix4 expected = {0, 0, 1, 7, 0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 0, 1};
    EXPECT_LT(Difference(NumbersOf(json["transform"]), expected), 1e-6) << "the angle is a float";
    EXPECT_EQ(NumbersOf(json["residuals"]).size(), 1u);
}

TEST_F(Alignment, WarnsOfPointsOnALine) {
    const std::string warning = "scenepane: " + m_options.pairFile +
                                ": the points are on one line, or nearly: the turn about it is arbitrary; add a pair "
                                "away from the line\n";
    Pairs("0 0 0 1 2 3\n100 0 0 101 2 3\n");
    EXPECT_NE(Align(kExitGood, warning), "");
    Pairs("0 0 0 1 2 3\n100 0 0 101 2 3\n40 0.9 0 41 2.9 3\n");
    EXPECT_NE(Align(kExitGood, warning), "");
    Pairs("0 0 0 1 2 3\n100 0 0 101 2 3\n40 5 0 41 7 3\n");
    EXPECT_NE(Align(), "");
}

TEST_F(Alignment, PrintsAndSavesNoMinusZero) {
    // Half a turn about Z: -1 beside zeros of both signs.
    Pairs("0 0 0 0 0 0\n100 0 0 -100 0 0\n0 50 0 0 -50 0\n0 0 30 0 0 30\n");
    m_options.savedTransforms = m_folder / "out.json";
    std::string text = Align() + '\n';
    m_options.json = false;
    text += Align();
    const std::vector<std::byte> bytes = ReadBytes(m_options.savedTransforms);
    text.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    for (const char* const end : {" ", ",", "]", "\n"})
        EXPECT_EQ(text.find("-0" + std::string(end)), std::string::npos) << text;
}

// ---- what is written

TEST_F(Alignment, SavesWhereAllFilesAreAfterwards) {
    WriteXdt(m_folder / "c.xdt", 2, 2);
    m_options.movingFiles.push_back(m_folder / "c.xdt");
    m_options.savedTransforms = m_folder / "out.json";
    (void)Align();
    const std::vector<StoredTransform> saved = Saved();
    ASSERT_EQ(saved.size(), 3u);
    const Matrix4 moved = {1, 0, 0, 1, 0, 1, 0, 2, 0, 0, 1, 3, 0, 0, 0, 1};
    EXPECT_EQ(saved[0].file, "a.xdt");
    EXPECT_LT(Difference(saved[0].matrix, moved), 1e-6);
    EXPECT_EQ(saved[1].file, "c.xdt");
    EXPECT_LT(Difference(saved[1].matrix, moved), 1e-6);
    EXPECT_EQ(saved[2], (StoredTransform{"b.xdt", kIdentity}));
}

TEST_F(Alignment, MovesOnFromStoredTransformsAndKeepsThoseOfOtherFiles) {
    Store({{m_folder / "a.xdt", kTurned}, {m_folder / "sub/other.xdt", kUp}, {m_folder / "b.xdt", kUp}});
    m_options.savedTransforms = m_folder / "out.json";
    (void)Align();
    const std::vector<StoredTransform> saved = Saved();
    ASSERT_EQ(saved.size(), 3u);
    const Matrix4 applied = {1, 0, 0, 1, 0, 1, 0, 2, 0, 0, 1, 3, 0, 0, 0, 1};
    EXPECT_LT(Difference(saved[0].matrix, Product(applied, kTurned)), 1e-5);
    EXPECT_EQ(saved[1], (StoredTransform{"b.xdt", kUp}));
    EXPECT_EQ(saved[2], (StoredTransform{"sub/other.xdt", kUp}));
}

TEST_F(Alignment, SavesNothingWhenAFileIsMissing) {
    m_options.fixedFiles.push_back(m_folder / "none.pcm");
    m_options.savedTransforms = m_folder / "out.json";
    const std::string text =
        Align(kExitFailure, "scenepane: " + (m_folder / "none.pcm") +
                                ": there is no such file: check its name and its folder\nscenepane: " +
                                m_options.savedTransforms + ": not written: not every file was imported\n");
    EXPECT_NE(text, "") << "the pairs alone give the transform";
    EXPECT_FALSE(std::filesystem::exists(m_options.savedTransforms));
}

TEST_F(Alignment, SaysWhyTransformsWereNotSaved) {
    m_options.savedTransforms = m_folder / "none/out.json";
    EXPECT_NE(
        Align(kExitFailure, "scenepane: " + m_options.savedTransforms + ": not written: No such file or directory\n"),
        "");
}

// ---- what gives no result

TEST_F(Alignment, PrintsNothingWithoutATransform) {
    m_options.savedTransforms = m_folder / "out.json";
    WriteText(m_options.savedTransforms, "older");
    Pairs("1 1 1 0 0 0\n1 1 1 0 1 0\n1 1 1 1 0 0\n");
    const std::string reason =
        m_options.pairFile + ": no transform was found; the points of each side must not be all the same\n";
    EXPECT_EQ(Align(kExitFailure, "scenepane: " + reason), "");
    Pairs("0 0 0 1 1 1\n0 1 0 1 1 1\n");
    EXPECT_EQ(Align(kExitFailure, "scenepane: " + reason), "");
    EXPECT_EQ(ReadBytes(m_options.savedTransforms).size(), 5u) << "an older file stays";
}

TEST_F(Alignment, NamesTheLineOfABadPair) {
    Pairs("0 0 0 0 0 0\n1 2 3 4 5 6 7\n");
    EXPECT_EQ(Align(kExitFailure, "scenepane: " + m_options.pairFile +
                                      ": line 2: 7 numbers, not six or twelve for a pair of points\n"),
              "");
    std::filesystem::remove(m_options.pairFile);
    EXPECT_EQ(
        Align(kExitFailure, "scenepane: " + m_options.pairFile + ": cannot be opened: No such file or directory\n"),
        "");
}

TEST_F(Alignment, PrintsNothingWithoutAFileThatMoves) {
    m_options.movingFiles = {m_folder / "none.pcm"};
    EXPECT_EQ(Align(kExitFailure, "scenepane: " + (m_folder / "none.pcm") +
                                      ": there is no such file: check its name and its folder\n"),
              "");
}

TEST_F(Alignment, PrintsNothingWithTransformsThatCannotBeApplied) {
    m_options.transformFile = m_folder / "none.json";
    EXPECT_EQ(Align(kExitFailure,
                    "scenepane: " + m_options.transformFile + ": cannot be opened: No such file or directory\n"),
              "");
    Store({{m_folder / "other.xdt", kUp}});
    EXPECT_EQ(
        Align(kExitFailure, "scenepane: " + m_options.transformFile + ": holds no transform for any of the files\n"),
        "");
}

// ---- stored transforms in the other runs

/// The grid a.xdt, 5 scene units higher than in its file.
class StoredTransforms : public GridPictures {
protected:
    void SetUp() override {
        GridPictures::SetUp();
        m_options.transformFile = m_folder / "t.json";
        std::string reason;
        ASSERT_TRUE(WriteTransformFile(m_options.transformFile, {{m_folder / "a.xdt", kUp}}, &reason)) << reason;
    }
    /// Info of the files as they are. @return the JSON text
    [[nodiscard]] static std::string InfoOf(const std::vector<std::string>& files) {
        HostOptions options;
        options.json = true;
        options.files = files;
        const Printed out, err;
        EXPECT_EQ(RunInfo(options, out, err), kExitGood);
        EXPECT_EQ(err.Text(), "");
        return out.Text();
    }
    [[nodiscard]] static bool Holds(const std::string& text, const std::string& part) {
        return text.find(part) != std::string::npos;
    }
};

constexpr const char* kUpBox = "\"box\": [0, 10, 0, 10, 4.99, 5.01]";

TEST_F(StoredTransforms, AreInTheInfo) {
    m_options.json = true;
    const Printed out, err;
    EXPECT_EQ(RunInfo(m_options, out, err), kExitGood);
    EXPECT_EQ(err.Text(), "");
    EXPECT_TRUE(Holds(out.Text(), kUpBox)) << out.Text();
    EXPECT_TRUE(Holds(out.Text(), "\"transform\": [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 5, 0, 0, 0, 1]")) << out.Text();
}

TEST_F(StoredTransforms, AreInAScreenshot) {
    m_options.clip = ClipPlane{{0, 0, 1}, {0, 0, 1}};
    const Png shown = Taken();
    m_options.transformFile.clear();
    const Png cutAway = Taken("scenepane: the clip plane cuts away all objects\n");
    EXPECT_NE(shown.At(100, 100), cutAway.At(100, 100));
    m_options.clip.reset();
    EXPECT_EQ(shown.At(100, 100), Taken().At(100, 100)) << "the grid from above";
}

TEST_F(StoredTransforms, AreInACapture) {
    WriteXdt(m_folder / "b.xdt", 11, 11);
    m_options.files.push_back(m_folder / "b.xdt");
    m_options.view = KV_ScenePane::ViewObliqueZUp;
    m_options.picturePath = m_folder / "moved.png";
    const Printed err;
    EXPECT_EQ(RunCapture(m_options, err), kExitGood);
    EXPECT_EQ(err.Text(), "scenepane: " + m_options.transformFile + ": no transform for " + m_options.files[1] + "\n");
    m_options.transformFile.clear();
    m_options.picturePath = m_folder / "together.png";
    EXPECT_EQ(RunCapture(m_options, err), kExitGood);
    EXPECT_TRUE(ReadPng(m_folder / "moved.png").bytes != ReadPng(m_folder / "together.png").bytes);
}

TEST_F(StoredTransforms, AreUnderThePixelsOfAPick) {
    m_options.json = true;
    m_options.picks = {{100, 100}};
    const Printed out, err;
    EXPECT_EQ(RunPick(m_options, out, err), kExitGood);
    const QJsonObject json = JsonOf(out.Text());
    EXPECT_NEAR(json["picks"][0]["point"][2].toDouble(NAN), 5, 1e-5) << out.Text();
}

TEST_F(StoredTransforms, AreInWhatAConversionAndAnExportWrite) {
    m_options.exportPath = m_folder / "o.ply";
    const Printed err;
    EXPECT_EQ(RunConvert(m_options, err), kExitGood);
    EXPECT_TRUE(Holds(InfoOf({m_options.exportPath}), kUpBox));
    m_options.exportPath = m_folder / "cut.ply";
    m_options.cuts = {{KV_ScenePane::PolygonInside, {{0, 0}, {0.5, 0}, {0.5, 0.99}, {0, 0.99}}}};
    EXPECT_EQ(RunExport(m_options, err), kExitGood);
    EXPECT_TRUE(Holds(InfoOf({m_options.exportPath}), ", 0, 10, 4.99, 5.01]")) << InfoOf({m_options.exportPath});
    EXPECT_EQ(err.Text(), "");
}

TEST_F(StoredTransforms, OfScansThatMovedAreRefusedByASaveOfCuts) {
    const std::string file = m_folder / "a.pcm";
    WritePcm(file, 11, 11);
    const std::vector<std::byte> before = ReadBytes(file);
    std::string reason;
    ASSERT_TRUE(WriteTransformFile(m_options.transformFile, {{file, kUp}}, &reason)) << reason;
    const std::string other = m_folder / "b.pcm";
    WritePcm(other, 11, 11);
    m_options.files = {file, other};
    m_options.clip = ClipPlane{{5, 5, 5}, {1, 0, 0}};
    const Printed out, err;
    EXPECT_EQ(RunSaveCuts(m_options, out, err), kExitFailure);
    EXPECT_EQ(out.Text(), file + ": skipped, was moved by --transforms: leave that out to save cuts\n" + other +
                              ": skipped, another file was moved by --transforms\n");
    EXPECT_EQ(err.Text(), "scenepane: " + m_options.transformFile + ": no transform for " + other +
                              "\nscenepane: no cuts are saved: --transforms moved a file; leave it out to save cuts\n");
    EXPECT_EQ(ReadBytes(file), before);
    EXPECT_EQ(ReadBytes(other), before);
    m_options.files = {file};
    // The transform that the file has moves nothing.
    ASSERT_TRUE(WriteTransformFile(m_options.transformFile, {{file, kIdentity}}, &reason)) << reason;
    EXPECT_EQ(RunSaveCuts(m_options, out, err), kExitGood) << err.Text();
    EXPECT_NE(ReadBytes(file), before);
}

TEST_F(StoredTransforms, ThatCannotBeReadEndEveryRunWithoutAResult) {
    WriteText(m_options.transformFile, "{\"scans\": [{\"file\": \"a.xdt\", \"transform\": []}]}");
    const std::string line = "scenepane: " + m_options.transformFile + ": entry 1: key \"transform\": not 16 numbers\n";
    m_options.exportPath = m_folder / "o.ply";
    m_options.picks = {{100, 100}};
    std::string lines;
    const Printed out, err;
    EXPECT_EQ(RunScreenshot(m_options, err), kExitFailure);
    EXPECT_EQ(RunCapture(m_options, err), kExitFailure);
    EXPECT_EQ(RunPick(m_options, out, err), kExitFailure);
    EXPECT_EQ(RunInfo(m_options, out, err), kExitFailure);
    EXPECT_EQ(RunConvert(m_options, err), kExitFailure);
    m_options.cuts = {{KV_ScenePane::PolygonInside, {{0, 0}, {0.5, 0}, {0.5, 0.99}, {0, 0.99}}}};
    EXPECT_EQ(RunSaveCuts(m_options, out, err), kExitFailure);
    EXPECT_EQ(RunExport(m_options, err), kExitFailure);
    for (int i = 0; i < 7; ++i) lines += line;
    EXPECT_EQ(err.Text(), lines);
    EXPECT_EQ(out.Text(), "");
    EXPECT_EQ(m_folder.FileCount(), 2u) << "the scan and the transforms";
}

TEST_F(StoredTransforms, OfFilesWithNamesThatAreNotUtf8AreApplied) {
    const std::string file = m_folder / "\xff\xe4.xdt";
    WriteXdt(file, 11, 11);
    std::string reason;
    ASSERT_TRUE(WriteTransformFile(m_options.transformFile, {{file, kUp}}, &reason)) << reason;
    m_options.files = {file};
    m_options.json = true;
    const Printed out, err;
    EXPECT_EQ(RunInfo(m_options, out, err), kExitGood);
    EXPECT_EQ(err.Text(), "");
    EXPECT_TRUE(Holds(out.Text(), kUpBox)) << out.Text();
}

TEST_F(StoredTransforms, GoToFilesThatAreOpenedSeveralTimesInOrder) {
    std::string reason;
    const std::string file = m_folder / "a.xdt";
    ASSERT_TRUE(WriteTransformFile(m_options.transformFile, {{file, kIdentity}, {file, kUp}}, &reason)) << reason;
    m_options.files = {file, file, file};
    m_options.json = true;
    const Printed out, err;
    EXPECT_EQ(RunInfo(m_options, out, err), kExitGood);
    EXPECT_EQ(err.Text(), "scenepane: " + m_options.transformFile + ": no transform for " + file + "\n");
    const QJsonArray objects = JsonOf(out.Text())["objects"].toArray();
    ASSERT_EQ(objects.size(), 3);
    for (const int i : {0, 1, 2}) EXPECT_EQ(objects[i]["transform"][11].toDouble(NAN), i == 1 ? 5 : 0) << i;
}

// ---- from simulated scans to the truth

/// Three scans with their poses, and s.json with the same poses.
class SimulatedScans : public testing::Test {
protected:
    void SetUp() override {
        unsetenv("DISPLAY");
        const std::string out = "--out=" + m_folder.Path().string();
        const std::vector<std::string_view> arguments = {out,           "--shape=bracket", "--scans=3",
                                                         "--prefix=s",  "--size=100x100",  "--noise=0",
                                                         "--dropout=0", "--threads=2"};
        std::ostringstream output, errors;
        ASSERT_EQ(simulate::Run(arguments, output, errors), 0) << errors.str();
        std::string reason;
        ASSERT_TRUE(ReadTransformFile(m_folder / "s.json", &m_truth, &reason)) << reason;
        ASSERT_EQ(m_truth.size(), 3u);
    }
    [[nodiscard]] std::string File(int i) const { return m_folder / ("s_00" + std::to_string(i + 1) + ".pcm"); }
    /// The transforms of --info for all three scans.
    /// @param transforms  the file of --transforms; empty for none
    [[nodiscard]] std::vector<Doubles> Info(const std::string& transforms) const {
        HostOptions options;
        options.json = true;
        options.files = {File(0), File(1), File(2)};
        options.transformFile = transforms;
        const Printed out, err;
        EXPECT_EQ(RunInfo(options, out, err), kExitGood);
        EXPECT_EQ(err.Text(), "");
        std::vector<Doubles> matrices;
        for (const QJsonValue& object : JsonOf(out.Text())["objects"].toArray())
            matrices.push_back(NumbersOf(object.toObject()["transform"]));
        return matrices;
    }

    ScratchFolder m_folder;
    std::vector<StoredTransform> m_truth;
};

TEST_F(SimulatedScans, HaveTheTransformsOfTheirDescription) {
    EXPECT_EQ(m_truth[1].file, "s_002.pcm");
    const std::vector<Doubles> own = Info(""), stored = Info(m_folder / "s.json");
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_LT(Difference(own.at(i), m_truth[i].matrix), 1e-4) << "the translation is rounded: micrometres in a pcm";
        EXPECT_LT(Difference(stored.at(i), m_truth[i].matrix), 2e-5) << "half a float step at 280 mm, as decimals";
    }
}

TEST_F(SimulatedScans, AreNotMovedByTheirOwnTransformsWhenCutsAreSaved) {
    HostOptions options;
    options.files = {File(0), File(1), File(2)};
    options.transformFile = m_folder / "s.json";
    options.cuts = {{KV_ScenePane::PolygonInside, {{0.1, 0.1}, {0.9, 0.1}, {0.9, 0.5}, {0.1, 0.5}}}};
    const std::vector<std::byte> before = ReadBytes(File(0));
    const Printed out, err;
    EXPECT_EQ(RunSaveCuts(options, out, err), kExitGood) << out.Text();
    EXPECT_EQ(err.Text(), "");
    EXPECT_EQ(out.Text(), File(0) + ": written\n" + File(1) + ": written\n" + File(2) + ": written\n");
    EXPECT_NE(ReadBytes(File(0)), before);
}

TEST_F(SimulatedScans, ComeBackToTheTruthFromAnotherPlaceByPairsOfTruePoints) {
    // A turn by atan2(3, 4) about Y, a shift: what the second scan is displaced by.
    const Rows displaced = {0.8, 0, 0.6, 12.5, 0, 1, 0, -7, -0.6, 0, 0.8, 31, 0, 0, 0, 1};
    const Rows back = {0.8, 0, -0.6, 8.6, 0, 1, 0, 7, 0.6, 0, 0.8, -32.3, 0, 0, 0, 1};
    const Rows unity = Product(displaced, back);
    ASSERT_LT(Difference(unity, kIdentity), 1e-12);
    std::vector<StoredTransform> wrong = m_truth;
    for (StoredTransform& transform : wrong) transform.file = m_folder / transform.file;
    const Rows moved = Product(displaced, m_truth[1].matrix);
    for (std::size_t i = 0; i < 12; ++i) wrong[1].matrix[i] = static_cast<float>(moved[i]);
    std::string reason;
    ASSERT_TRUE(WriteTransformFile(m_folder / "wrong.json", wrong, &reason)) << reason;
    EXPECT_LT(Difference(Info(m_folder / "wrong.json").at(1), moved), 1e-4);

    // Points of the object, where the second scan shows them now, and where they are.
    std::string pairs;
    for (const auto& [x, y, z] : {std::array{40.0, 10.0, -5.0}, {-35.0, 22.0, 8.0}, {3.0, -30.0, 25.0}}) {
        std::ostringstream line;
        line.precision(9);
        for (std::size_t row = 0; row < 3; ++row)
            line << displaced[4 * row] * x + displaced[4 * row + 1] * y + displaced[4 * row + 2] * z +
                        displaced[4 * row + 3]
                 << ' ';
        line << x << ' ' << y << ' ' << z << '\n';
        pairs += line.str();
    }
    WriteText(m_folder / "pairs.txt", pairs);
    HostOptions options;
    options.pairFile = m_folder / "pairs.txt";
    options.movingFiles = {File(1)};
    options.fixedFiles = {File(0), File(2)};
    options.transformFile = m_folder / "wrong.json";
    options.savedTransforms = m_folder / "aligned.json";
    options.json = true;
    const Printed out, err;
    ASSERT_EQ(RunAlign(options, out, err), kExitGood) << err.Text();
    const QJsonObject json = JsonOf(out.Text());
    EXPECT_LT(Difference(NumbersOf(json["transform"]), back), 1e-5);
    EXPECT_LT(json["rms"].toDouble(NAN), 1e-5) << "the rounding of the pairs to floats";
    const std::vector<Doubles> aligned = Info(m_folder / "aligned.json");
    // The sensor is about 600 mm away: an angle of 1e-7 moves it by 6e-5 mm.
    for (std::size_t i = 0; i < 3; ++i) EXPECT_LT(Difference(aligned.at(i), m_truth[i].matrix), 2e-4) << i;
}

}  // namespace

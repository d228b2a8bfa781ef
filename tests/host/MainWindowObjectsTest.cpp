// Objects in the window: the selection in the list and in the view, commands for several of them, and their colours.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QFile>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <cmath>
#include <filesystem>
#include <numbers>
#include <optional>
#include <sstream>

#include "CutCommands.h"
#include "ExportDialog.h"
#include "FileListDialog.h"
#include "KV_ScenePane/Modes.h"
#include "ObjectPalette.h"
#include "host/MeshFiles.h"
#include "host/PointerFixture.h"

namespace {

/// A square of two triangles in the plane z = 0, 60 units wide, that faces +Z.
void WriteSquare(const std::string& path, int left) {
    std::ostringstream text;
    text << PlyHeader(4, 2);
    for (const auto& [x, y] : {std::pair(0, 0), {60, 0}, {60, 60}, {0, 60}}) text << left + x << ' ' << y << " 0\n";
    text << "3 0 1 2\n3 0 2 3\n";
    WriteText(path, text.str());
}

/// A sphere of radius 50 around the origin.
void WriteSphere(const std::string& path) {
    constexpr int kRings = 40, kSides = 60;
    std::ostringstream text;
    text << PlyHeader((kRings + 1) * kSides, 2 * kRings * kSides);
    for (int ring = 0; ring <= kRings; ++ring) {
        const double polar = std::numbers::pi * ring / kRings;
        for (int side = 0; side < kSides; ++side) {
            const double turn = 2 * std::numbers::pi * side / kSides;
            text << 50 * std::sin(polar) * std::cos(turn) << ' ' << 50 * std::sin(polar) * std::sin(turn) << ' '
                 << 50 * std::cos(polar) << '\n';
        }
    }
    for (int ring = 0; ring < kRings; ++ring) {
        for (int side = 0; side < kSides; ++side) {
            const int next = (side + 1) % kSides, a = ring * kSides, b = a + kSides;
            text << "3 " << a + side << ' ' << b + side << ' ' << b + next << "\n3 " << a + side << ' ' << b + next
                 << ' ' << a + next << '\n';
        }
    }
    WriteText(path, text.str());
}

class MainWindowObjects : public PointerFixture {
protected:
    using Indices = std::vector<int>;

    void ImportSquares() {
        WriteSquare(m_folder / "left.ply", 0);
        WriteSquare(m_folder / "middle.ply", 100);
        WriteSquare(m_folder / "right.ply", 200);
        Import({m_folder / "left.ply", m_folder / "middle.ply", m_folder / "right.ply"});
        ASSERT_EQ(ObjectsInViewer(), 3);
    }
    [[nodiscard]] ObjectList& List() const { return m_window->Objects(); }
    /// Whether the frame has lines in the colour of a selected object's box, which smooth edges mix with others.
    [[nodiscard]] bool IsOutlined() const {
        const KV_ScenePane::Picture frame = DrawFrame();
        const auto isOutline = [](std::uint32_t pixel) {
            const unsigned red = (pixel >> 16) & 0xFF, green = (pixel >> 8) & 0xFF, blue = pixel & 0xFF;
            return blue > red + 50 && blue > green + 30;
        };
        return std::ranges::count_if(frame.pixels, isOutline) > 50;
    }
    /// On the screen: the middle of the pixels that show the object. @throws std::runtime_error
    [[nodiscard]] QPoint PlaceOf(int object) const {
        QPoint sum;
        int count = 0;
        for (int y = 2; y < m_viewer->height(); y += 8) {
            for (int x = 2; x < m_viewer->width(); x += 8) {
                KV_ScenePane::SurfacePoint hit;
                if (!m_window->Pane()->PickSurface(x, y, &hit) || hit.object != object) continue;
                sum += QPoint(x, y);
                ++count;
            }
        }
        if (count == 0) throw std::runtime_error("the object is not in the picture");
        return m_viewer->mapToGlobal(sum / count);
    }
    void Click(const QPoint& global) const {
        Xdotool("mousemove " + At(global) + " click 1");
        WaitForInput();
        for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();  // the click is handled later
    }
    [[nodiscard]] QPoint Corner() const { return m_viewer->mapToGlobal(QPoint(8, 8)); }
    void Command(const char* name) const { Find<QAction>(name).trigger(); }
    [[nodiscard]] Indices Hidden() const {
        Indices hidden;
        for (const int index : List().PresentObjects()) {
            if (List().IsHidden(index)) hidden.push_back(index);
        }
        return hidden;
    }
    [[nodiscard]] std::vector<std::int32_t> Colors() const {
        std::vector<std::int32_t> colors;
        for (int i = 0; i < ObjectsInViewer(); ++i) {
            colors.push_back(Methods().GetObjectColor(static_cast<std::int16_t>(i)));
            EXPECT_EQ(List().ColorOf(i), colors.back()) << "the list shows it";
        }
        return colors;
    }
};

// ---- selection

TEST_F(MainWindowObjects, AreOutlinedWhileTheirRowsAreSelected) {
    ImportSquares();
    EXPECT_FALSE(IsOutlined());
    List().Select({1});
    EXPECT_TRUE(IsOutlined());
    List().Select({});
    EXPECT_FALSE(IsOutlined());
}

TEST_F(MainWindowObjects, AreOutlinedByOneFrameAndNoMore) {
    ImportSquares();
    const auto frames = [&] { return m_window->Pane()->GetFrameStatistics().count; };
    const auto settle = [&] {
        for (int i = 0; i < 20; ++i) QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    };
    settle();
    const std::uint64_t before = frames();
    List().Select({1});
    settle();
    EXPECT_EQ(frames(), before + 1);
    List().Select({1});
    settle();
    EXPECT_EQ(frames(), before + 1) << "the same rows";
}

TEST_F(MainWindowObjects, KeepTheOutlineWhenOthersAreDeleted) {
    ImportSquares();
    List().Select({2});
    m_window->DeleteObject(0);
    EXPECT_EQ(List().SelectedObjects(), Indices{1});
    EXPECT_TRUE(IsOutlined());
    m_window->DeleteObject(1);
    EXPECT_FALSE(IsOutlined());
    m_window->ClearScene();
    EXPECT_FALSE(IsOutlined());
}

TEST_F(MainWindowObjects, AreNotOutlinedWhileALassoIsDrawn) {
    ImportSquares();
    List().Select({0});
    m_window->Cuts().Start(KV_ScenePane::PolygonInside);
    ASSERT_TRUE(m_window->Cuts().RunningWay());
    EXPECT_FALSE(IsOutlined());
    m_window->Cuts().Cancel();
    EXPECT_TRUE(IsOutlined());
}

TEST_F(MainWindowObjects, AreSelectedByAClickInTheView) {
    ImportSquares();
    const std::array<float, 10> view = View();
    Click(PlaceOf(2));
    EXPECT_EQ(List().SelectedObjects(), Indices{2});
    EXPECT_EQ(List().CurrentObject(), 2);
    Click(PlaceOf(0));
    EXPECT_EQ(List().SelectedObjects(), Indices{0});
    Click(Corner());
    EXPECT_EQ(List().SelectedObjects(), Indices{}) << "beside the objects";
    EXPECT_EQ(View(), view);
}

TEST_F(MainWindowObjects, AreNotSelectedByADrag) {
    ImportSquares();
    List().Select({1});
    const QPoint at = PlaceOf(2);
    Xdotool("mousemove " + At(at) + " mousedown 1");
    WaitForInput();
    Xdotool("mousemove " + At(at + QPoint(12, 0)));
    WaitForInput();  // the viewer joins moves that wait together
    Xdotool("mousemove " + At(at) + " mouseup 1");
    WaitForInput();
    QCoreApplication::processEvents();
    EXPECT_EQ(List().SelectedObjects(), Indices{1});
}

TEST_F(MainWindowObjects, AreNotSelectedByAClickWhereClicksPick) {
    ImportSquares();
    m_window->ChoosePickMode(KV_ScenePane::PickModePoints);
    Click(PlaceOf(2));
    EXPECT_EQ(List().SelectedObjects(), Indices{});
    Xdotool("mousemove " + At(PlaceOf(2)) + " click --repeat 2 --delay 40 1");
    ASSERT_TRUE(WaitUntil([&] { return List().SelectedObjects() == Indices{2}; })) << "a pick selects";
}

// ---- centring

TEST_F(MainWindowObjects, AreCentredByADoubleClickOnTheirRow) {
    ImportSquares();
    Trigger("Fit the view");
    const std::array<float, 10> before = View();
    const QRect row = List().visualItemRect(List().Row(2));
    const QPoint at(List().header()->sectionViewportPosition(ObjectList::kTriangles) + 5, row.center().y());
    Xdotool("mousemove " + At(List().viewport()->mapToGlobal(at)) + " click --repeat 2 --delay 40 1");
    ASSERT_TRUE(WaitUntil([&] { return View()[6] != before[6]; }));
    EXPECT_NEAR(View()[6], 230, 1e-3);
    EXPECT_NEAR(View()[7], 30, 1e-3);
    EXPECT_NEAR(View()[8], 0, 1e-3);
    EXPECT_NEAR(View()[9], before[9], 1e-5) << "it fits at this magnification";
    for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(View()[i], before[i]);
}

TEST_F(MainWindowObjects, AreShownAsAWholeWhenTheyAreCentred) {
    ImportSquares();
    Trigger("Fit the view");
    const std::array<float, 10> v = View();
    Methods().SetViewParams(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], 10.0f, 0);
    List().Select({0});
    Command("centreObject");
    EXPECT_LT(View()[9], 10.0f);
    // The square has a margin on all sides, and fills most of the shorter one.
    const QPoint middle = m_viewer->mapFromGlobal(PlaceOf(0));
    EXPECT_NEAR(middle.x(), m_viewer->width() / 2, 8);
    EXPECT_NEAR(middle.y(), m_viewer->height() / 2, 8);
    const auto hits = [&](double part) {
        const int side = static_cast<int>(part * ShorterSide() / 2);
        KV_ScenePane::SurfacePoint hit;
        return m_window->Pane()->PickSurface(m_viewer->width() / 2 + side, m_viewer->height() / 2, &hit);
    };
    EXPECT_TRUE(hits(0.85));
    EXPECT_FALSE(hits(0.95));
}

// ---- visibility

TEST_F(MainWindowObjects, AreShownAndHiddenTogether) {
    ImportSquares();
    List().Select({0, 2});
    Command("hideObjects");
    EXPECT_EQ(Hidden(), (Indices{0, 2}));
    EXPECT_THROW((void)PlaceOf(0), std::runtime_error);
    EXPECT_NO_THROW((void)PlaceOf(1));
    Command("invertObjects");
    EXPECT_EQ(Hidden(), Indices{1});
    Command("showAllObjects");
    EXPECT_EQ(Hidden(), Indices{});
    List().Select({1});
    Command("showOnlyObjects");
    EXPECT_EQ(Hidden(), (Indices{0, 2}));
    EXPECT_NO_THROW((void)PlaceOf(1));
    List().Select({2});
    Command("showObjects");
    EXPECT_EQ(Hidden(), Indices{0});
}

TEST_F(MainWindowObjects, ThatAreDeletedAreNotShownWithAll) {
    ImportSquares();
    m_window->RemoveObjects({1});
    Command("invertObjects");
    Command("showAllObjects");
    EXPECT_THROW((void)PlaceOf(1), std::runtime_error);
    EXPECT_NO_THROW((void)PlaceOf(0));
}

TEST_F(MainWindowObjects, HaveNoCommandsWithoutAnObjectOrASelection) {
    EXPECT_FALSE(Find<QAction>("showAllObjects").isEnabled());
    ImportSquares();
    EXPECT_TRUE(Find<QAction>("showAllObjects").isEnabled());
    EXPECT_FALSE(Find<QAction>("hideObjects").isEnabled());
    List().Select({0});
    EXPECT_TRUE(Find<QAction>("hideObjects").isEnabled());
    m_window->Cuts().Start(KV_ScenePane::PolygonInside);
    EXPECT_FALSE(Find<QAction>("hideObjects").isEnabled());
    EXPECT_FALSE(Find<QAction>("colorByObject").isEnabled());
    m_window->Cuts().Cancel();
    EXPECT_TRUE(Find<QAction>("hideObjects").isEnabled());
}

// ---- colours

TEST_F(MainWindowObjects, OfSeveralScansHaveColoursOfThePalette) {
    const std::vector<std::string> files = ManyPcms(3);
    Import(files);
    EXPECT_EQ(Colors(), (std::vector<std::int32_t>{kPalette[0], kPalette[1], kPalette[2]}));
    Import({files[0]});
    EXPECT_EQ(Colors().back(), kPalette[3]) << "the scene is coloured by object";
    m_window->ColorObject(1, 0x112233);
    Command("oneColor");
    const std::int32_t usual = ImportSettings{}.color;
    EXPECT_EQ(Colors(), (std::vector<std::int32_t>{usual, 0x112233, usual, usual})) << "the user's choice stays";
    Import({files[0]});
    EXPECT_EQ(Colors().back(), usual);
    Command("colorByObject");
    EXPECT_EQ(Colors(), (std::vector<std::int32_t>{kPalette.begin(), kPalette.begin() + 5}));
}

TEST_F(MainWindowObjects, OfOneScanHaveTheColourOfScans) {
    Import(ManyPcms(1));
    EXPECT_EQ(Colors(), std::vector<std::int32_t>{ImportSettings{}.color});
}

TEST_F(MainWindowObjects, HaveTheColourOfTheCommandLine) {
    HostOptions options;
    options.import.color = 0x0000FF;
    options.given.color = true;
    options.files = ManyPcms(2);
    Show(options);
    ASSERT_TRUE(WaitUntil([&] { return m_window->HaveAllFilesAdded() && ObjectsInViewer() == 2; }));
    WaitForImports();
    EXPECT_EQ(Colors(), (std::vector<std::int32_t>{0x0000FF, 0x0000FF}));
}

TEST_F(MainWindowObjects, OfMeshFilesAreGrayAndTheirHighlightsDoNotClip) {
    WriteSphere(m_folder / "sphere.ply");
    Import({m_folder / "sphere.ply"});
    EXPECT_EQ(Colors(), std::vector<std::int32_t>{kMeshColor});
    for (const auto mode : {KV_ScenePane::DrawModeGouraud, KV_ScenePane::DrawModePerPixel}) {
        Methods().SetDrawMode(mode);
        const KV_ScenePane::Picture frame = DrawFrame();
        std::size_t lit = 0, clipped = 0;
        for (const std::uint32_t pixel : frame.pixels) {
            if ((pixel & 0xFFFFFF) == kBackground) continue;
            ++lit;
            clipped += (pixel & 0xFFFFFF) == 0xFFFFFF ? 1 : 0;
        }
        EXPECT_GT(lit, frame.pixels.size() / 20);
        EXPECT_LT(clipped, lit / 20) << "render mode " << mode;
    }
}

TEST_F(MainWindowObjects, KeepTheColoursOfTheirVertices) {
    std::string text = TetraPlyText();
    text.replace(text.find("property float z\n"), 17,
                 "property float z\nproperty uchar red\nproperty uchar green\nproperty uchar blue\n");
    for (const char* const point : {"0 0 0 \n", "1 0 0 \n", "0 1 0 \n", "0 0 1 \n"})
        text.replace(text.find(point), 7, std::string(point, 6) + "10 20 30\n");
    WriteText(m_folder / "colored.ply", text);
    Import({m_folder / "colored.ply"});
    ASSERT_TRUE(List().HasVertexColors(0)) << Messages();
    const std::vector<std::int32_t> before = Colors();
    EXPECT_NE(before.front(), kMeshColor);
    Command("colorByObject");
    EXPECT_EQ(Colors(), before);
}

// ---- exports

class ExportsOfObjects : public MainWindowObjects {
protected:
    /// Answers the dialog for the export, and the question about files that exist.
    void Export(const QString& format, std::optional<QDialogButtonBox::StandardButton> answer = {}) {
        m_question.clear();
        QTimer::singleShot(0, m_window.get(), [this, format, answer] {
            auto* const dialog = qobject_cast<ExportDialog*>(QApplication::activeModalWidget());
            if (dialog == nullptr) return;
            for (const auto* const button : dialog->findChildren<QPushButton*>())
                EXPECT_EQ(button->isDefault(), button->text() == "&Export") << button->text().toStdString();
            dialog->findChild<QLineEdit*>("exportFolder")->setText(QString::fromStdString(m_folder / "out"));
            auto* const formats = dialog->findChild<QComboBox*>("exportFormat");
            formats->setCurrentIndex(formats->findText(format, Qt::MatchStartsWith));
            QTimer::singleShot(0, m_window.get(), [this, answer] {
                auto* const question = qobject_cast<FileListDialog*>(QApplication::activeModalWidget());
                if (question == nullptr) return;
                m_question = question->Text();
                question->Press(answer.value_or(QDialogButtonBox::Cancel));
            });
            dialog->accept();
        });
        Command("exportObjects");
    }
    [[nodiscard]] std::string Content(const std::string& name) const {
        QFile file(QString::fromStdString(m_folder / "out/" + name));
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "no file";
    }

    QString m_question;  // that was asked about files that exist
};

TEST_F(ExportsOfObjects, WriteOneFilePerSelectedObject) {
    ImportSquares();
    std::filesystem::create_directory(m_folder / "out");
    List().Select({0, 2});
    List().Row(2)->setText(ObjectList::kName, "left");
    Export("STL");
    EXPECT_EQ(m_question, "");
    EXPECT_GT(Content("left.stl").size(), 80u);
    EXPECT_GT(Content("left (2).stl").size(), 80u);
    EXPECT_EQ(Content("middle.stl"), "no file");
}

TEST_F(ExportsOfObjects, AskBeforeTheyOverwrite) {
    ImportSquares();
    std::filesystem::create_directory(m_folder / "out");
    WriteText(m_folder / "out/right.ply", "precious");
    List().Select({1, 2});
    Export("PLY", QDialogButtonBox::Cancel);
    EXPECT_TRUE(m_question.contains("right.ply")) << m_question.toStdString();
    EXPECT_FALSE(m_question.contains("middle.ply"));
    EXPECT_EQ(Content("right.ply"), "precious");
    EXPECT_EQ(Content("middle.ply"), "no file");
    Export("PLY", QDialogButtonBox::Yes);
    EXPECT_EQ(Content("right.ply").substr(0, 3), "ply");
    EXPECT_EQ(Content("middle.ply").substr(0, 3), "ply");
}

TEST_F(ExportsOfObjects, DoNotDependOnTheColoursOfThePalette) {
    ImportSquares();
    const auto exported = [&](const std::string& name) {
        EXPECT_TRUE(m_window->ExportObjectTo(0, m_folder / name)) << Messages();
        return ReadBytes(m_folder / name);
    };
    const std::vector<std::byte> before = exported("a.ply");
    Command("colorByObject");
    ASSERT_NE(Colors().front(), kMeshColor);
    EXPECT_EQ(exported("b.ply"), before);
}

}  // namespace

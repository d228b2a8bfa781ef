// Pictures of the view: what they show, their files, and that the window is as before.
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDockWidget>
#include <QFileDialog>
#include <QImage>
#include <QImageReader>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QSpinBox>
#include <QTimer>
#include <algorithm>
#include <array>
#include <cstdlib>
#include <functional>
#include <ostream>
#include <utility>
#include <vector>

#include "ClipPanel.h"
#include "PictureCommands.h"
#include "PictureDialog.h"
#include "ViewPicture.h"
#include "ViewerWidget.h"
#include "host/MainWindowFixture.h"
#include "host/ModalDialogs.h"
#include "host/RefusedMemory.h"

namespace {

class MainWindowPictures : public MainWindowFixture {
protected:
    void SetUp() override {
        Show();
        ShowSquare();
    }
    /// A square that covers the middle of the view and leaves its corners free.
    void ShowSquare() {
        WritePcm(m_folder / "square.pcm", 41, 41);
        Import({m_folder / "square.pcm"});
        Methods().SetViewMode(4);  // from +Z
        Methods().CenterView();
        Methods().PerformRefresh();
    }
    [[nodiscard]] ViewerWidget& Viewer() const { return *m_window->findChild<ViewerWidget*>(); }
    [[nodiscard]] QImage Saved(const PictureLook& look, const char* name = "view.png") const {
        const std::string path = m_folder / name;
        EXPECT_TRUE(m_window->Pictures().SavePicture(path, look)) << Messages();
        return QImage(QString::fromStdString(path));
    }
    /// An image of half alpha in a corner of the view, over the background. @return its alpha and its colour
    [[nodiscard]] QRgb AddHalfTransparentOverlay() const {
        constexpr int kSide = 40;
        std::vector<std::uint8_t> bytes;
        for (int i = 0; i < kSide * kSide; ++i) bytes.insert(bytes.end(), {40, 100, 200, 128});
        (void)Methods().AddOverlayData(bytes.data(), kSide, kSide, 0, 0, 0, 0, 0, 0);
        return qRgba(200, 100, 40, 128);
    }
    /// Everything that a picture without decorations hides.
    void ShowDecorations() const {
        for (const char* const box : {"axes", "arrow", "cross"}) Find<QCheckBox>(box).setChecked(true);
        Methods().SetMaxNumberOfNeedles(4);
        ASSERT_NE(Methods().CreateNeedle(1, 20, 20, 0, 20, 20, 30), 0);
        Methods().SetNeedleDrawingMode(KV_ScenePane::kVariantTrue);
        Methods().SetLine3DDrawingMode(KV_ScenePane::kVariantTrue);
        m_window->Clip().SwitchClipping(true);
        m_window->Objects().Select({0});
    }
};

// ---- what they show

TEST_F(MainWindowPictures, OfTheSizeOfTheWindowAreItsFrame) {
    const KV_ScenePane::Picture frame = DrawFrame();
    const QImage image = Saved({});
    ASSERT_EQ(image.size(), QSize(frame.width, frame.height));
    EXPECT_FALSE(image.hasAlphaChannel());
    for (int y = 0; y < frame.height; ++y) {
        for (int x = 0; x < frame.width; ++x)
            ASSERT_EQ(image.pixel(x, y) | 0xFF000000,
                      frame.pixels[static_cast<std::size_t>(y * frame.width + x)] | 0xFF000000);
    }
}

TEST_F(MainWindowPictures, OfTwiceTheSizeShowTheSameView) {
    const KV_ScenePane::Picture frame = DrawFrame();
    const QImage image = Saved({{2 * frame.width, 2 * frame.height}});
    ASSERT_EQ(image.size(), QSize(2 * frame.width, 2 * frame.height));
    const auto at = [&](int x, int y) {
        return frame.pixels[static_cast<std::size_t>(y * frame.width + x)] & 0xFFFFFF;
    };
    // Away from edges: inside the square, and in the corners.
    for (const auto& [x, y] :
         {std::pair{frame.width / 2, frame.height / 2}, {2, 2}, {frame.width - 3, frame.height - 3}})
        EXPECT_EQ(image.pixel(2 * x, 2 * y) & 0xFFFFFF, at(x, y)) << x << ", " << y;
    // The edges of the square are at twice the distance.
    const auto firstOf = [](int length, const std::function<bool(int)>& isSquare) {
        int i = 0;
        while (i < length && !isSquare(i)) ++i;
        return i;
    };
    const int small = firstOf(frame.width, [&](int x) { return at(x, frame.height / 2) != kBackground; });
    const int large =
        firstOf(image.width(), [&](int x) { return (image.pixel(x, frame.height) & 0xFFFFFF) != kBackground; });
    EXPECT_GT(small, 10);
    EXPECT_LE(std::abs(large - 2 * small), 2) << small << ", " << large;
}

TEST_F(MainWindowPictures, OfAnotherShapeShowWhatAWindowOfThatShapeWould) {
    const QImage image = Saved({{300, 600}});
    ASSERT_EQ(image.size(), QSize(300, 600));
    EXPECT_NE(image.pixel(150, 300) & 0xFFFFFF, kBackground) << "the square is in the middle";
    EXPECT_EQ(image.pixel(150, 20) & 0xFFFFFF, kBackground) << "nothing is above it";
}

TEST_F(MainWindowPictures, WithoutBackgroundHaveAlpha0BesideAnd255OnTheObjects) {
    const KV_ScenePane::Picture frame = DrawFrame();
    const QImage image = Saved({.size = {}, .isTransparent = true});
    ASSERT_TRUE(image.hasAlphaChannel());
    for (const auto& [x, y] : {std::pair{0, 0}, {frame.width - 1, 0}, {0, frame.height - 1}, {3, frame.height / 2}})
        EXPECT_EQ(image.pixel(x, y), 0u) << x << ", " << y;
    const QRgb middle = image.pixel(frame.width / 2, frame.height / 2);
    EXPECT_EQ(middle, MiddlePixel() | 0xFF000000);
}

TEST_F(MainWindowPictures, WithoutBackgroundKeepTheAlphaOfWhatIsHalfTransparent) {
    const QRgb expected = AddHalfTransparentOverlay();
    const QRgb pixel = Saved({.size = {}, .isTransparent = true}).pixel(20, 20);
    EXPECT_NEAR(qAlpha(pixel), qAlpha(expected), 1);
    // Of the blended colour one step; the half alpha doubles it.
    EXPECT_NEAR(qRed(pixel), qRed(expected), 3);
    EXPECT_NEAR(qGreen(pixel), qGreen(expected), 3);
    EXPECT_NEAR(qBlue(pixel), qBlue(expected), 3);
}

TEST_F(MainWindowPictures, WithoutBackgroundOverTheOldOneAreTheFrame) {
    const KV_ScenePane::Picture frame = DrawFrame();
    const QImage image = Saved({.size = {}, .isTransparent = true});
    int largest = 0;
    for (int y = 0; y < frame.height; ++y) {
        for (int x = 0; x < frame.width; ++x) {
            const QRgb pixel = image.pixel(x, y);
            const QRgb expected = frame.pixels[static_cast<std::size_t>(y * frame.width + x)];
            for (const int shift : {16, 8, 0}) {
                const double a = qAlpha(pixel) / 255.0;
                const double over = (pixel >> shift & 0xFF) * a + (kBackground >> shift & 0xFF) * (1 - a);
                largest = std::max(largest, static_cast<int>(std::abs(over - (expected >> shift & 0xFF)) + 0.5));
            }
        }
    }
    EXPECT_LE(largest, 2) << "also at the smooth edges: a step of each of the two pictures";
}

TEST_F(MainWindowPictures, WithoutDecorationsShowTheSceneAlone) {
    const QImage plain = Saved({});
    ShowDecorations();
    EXPECT_NE(Saved({}), plain) << "with decorations";
    m_window->Clip().SwitchClipping(false);  // a plane that is hidden still cuts
    EXPECT_EQ(Saved({.size = {}, .hasDecorations = false}), plain);
}

// ---- the window afterwards

struct Look {
    const char* name;
    PictureLook look;
};
void PrintTo(const Look& row, std::ostream* out) { *out << row.name; }
class MainWindowAfterAPicture : public MainWindowPictures, public testing::WithParamInterface<Look> {};

TEST_P(MainWindowAfterAPicture, IsAsBefore) {
    ShowDecorations();
    (void)DrawFrame();  // axes store a view mode with their first frame
    const auto before = DrawFrame();
    const auto view = View();
    ASSERT_TRUE(m_window->Pictures().SavePicture(m_folder / "a.png", GetParam().look)) << Messages();
    const auto after = DrawFrame();
    EXPECT_EQ(after.width, before.width);
    EXPECT_EQ(after.height, before.height);
    EXPECT_EQ(after.pixels, before.pixels);
    EXPECT_EQ(View(), view);
    QCoreApplication::processEvents();
    EXPECT_EQ(DrawFrame().pixels, before.pixels) << "nor after the waiting events of its window";
    EXPECT_TRUE(Find<QCheckBox>("axes").isChecked());
}

const Look kLooks[] = {
    {"OfItsSize", {}},
    {"FourTimesAsLarge", {{2000, 1400}}},
    {"OfAnotherShape", {{100, 700}}},
    {"WithoutBackground", {.size = {}, .isTransparent = true}},
    {"WithoutDecorations", {.size = {}, .hasDecorations = false}},
    {"WithNothingOfThem", {.size = {900, 900}, .hasDecorations = false, .isTransparent = true}},
};
INSTANTIATE_TEST_SUITE_P(Pictures, MainWindowAfterAPicture, testing::ValuesIn(kLooks),
                         [](const auto& row) { return row.param.name; });

TEST_F(MainWindowPictures, AreDrawnWithoutAChangeOnTheScreen) {
    const auto grab = [&] {
        return m_window->screen()->grabWindow(Viewer().winId()).toImage().convertToFormat(QImage::Format_RGB32);
    };
    ASSERT_TRUE(WaitUntil([&] { return grab().pixelColor(3, 3).rgb() == (kBackground | 0xFF000000); }));
    const QImage before = grab();
    QImage during;
    PictureHooks hooks;
    hooks.background = [&] {  // when the pictures are taken and nothing is restored yet
        during = grab();
        return std::array<std::int32_t, 4>{0x321919, 0x321919, 0x321919, 0x321919};
    };
    hooks.hideDecorations = [](bool) {};
    (void)TakeViewPicture(Viewer(), {.size = {1500, 1100}, .isTransparent = true}, hooks);
    EXPECT_EQ(during, before);
    EXPECT_TRUE(WaitUntil([&] { return grab() == before; }));
}

// ---- files and clipboard

TEST_F(MainWindowPictures, AddAMessage) {
    (void)Saved({{200, 100}});
    EXPECT_NE(Messages().find((m_folder / "view.png") + ": picture of 200 x 100 pixels"), std::string::npos)
        << Messages();
}

TEST_F(MainWindowPictures, AreJpegFilesByTheirName) {
    if (!QImageReader::supportedImageFormats().contains("jpeg")) GTEST_SKIP() << "Qt has no plugin for jpeg";
    const QImage image = Saved({{200, 100}}, "view.JPG");
    EXPECT_EQ(image.size(), QSize(200, 100));
    EXPECT_EQ(QImageReader(QString::fromStdString(m_folder / "view.JPG")).format(), "jpeg");
}

TEST_F(MainWindowPictures, AreNoTransparentJpegFiles) {
    EXPECT_FALSE(m_window->Pictures().SavePicture(m_folder / "a.jpg", {.size = {}, .isTransparent = true}));
    EXPECT_NE(Messages().find("a.jpg: not written: JPEG files have no transparency: choose PNG"), std::string::npos);
    EXPECT_FALSE(QFile::exists(QString::fromStdString(m_folder / "a.jpg")));
}

TEST_F(MainWindowPictures, ReportAFileThatCannotBeWritten) {
    EXPECT_FALSE(m_window->Pictures().SavePicture(m_folder / "no/a.png", {}));
    EXPECT_NE(Messages().find("no/a.png: not written: the file could not be replaced: No such file or directory"),
              std::string::npos)
        << Messages();
    EXPECT_TRUE(Find<QDockWidget>("messages").isVisible());
}

TEST_F(MainWindowPictures, ReportASizeThatIsTooLargeAndDrawNothing) {
    OpenMessages();
    const auto before = DrawFrame();
    EXPECT_FALSE(m_window->Pictures().SavePicture(m_folder / "a.png", {{40000, 10}}));
    EXPECT_NE(Messages().find("a.png: not written: a side is longer than the "), std::string::npos) << Messages();
    EXPECT_FALSE(m_window->Pictures().SavePicture(m_folder / "b.png", {{10000, 10000}}));
    EXPECT_NE(Messages().find("b.png: not written: the picture has more than 67 million pixels"), std::string::npos);
    EXPECT_EQ(DrawFrame().pixels, before.pixels);
}

#ifndef __SANITIZE_ADDRESS__
TEST_F(MainWindowPictures, ReportExhaustedMemoryAndLeaveTheWindowAsBefore) {
    OpenMessages();
    const auto before = DrawFrame();
    bool saved = true;
    g_refusedBytes = 1200 * 1000 * 4;  // the pixels of the picture
    EXPECT_NO_THROW(saved = m_window->Pictures().SavePicture(
                        m_folder / "a.png", {.size = {1200, 1000}, .hasDecorations = false, .isTransparent = true}));
    g_refusedBytes = SIZE_MAX;
    EXPECT_FALSE(saved);
    EXPECT_NE(Messages().find("a.png: not written: there is not enough memory"), std::string::npos) << Messages();
    EXPECT_EQ(DrawFrame().pixels, before.pixels);
    EXPECT_TRUE(m_window->Pictures().SavePicture(m_folder / "a.png", {})) << "the next one works as usual";
}
#endif

TEST_F(MainWindowPictures, AreCopiedInTheSizeOfTheWindow) {
    const KV_ScenePane::Picture frame = DrawFrame();
    Trigger("Copy picture");
    const QMimeData* const data = QApplication::clipboard()->mimeData();
    ASSERT_TRUE(data->hasImage());
    const QImage image = qvariant_cast<QImage>(data->imageData());
    EXPECT_EQ(image.size(), QSize(frame.width, frame.height));
    EXPECT_EQ(image.pixel(1, 1) & 0xFFFFFF, kBackground);
    EXPECT_NE(Messages().find("copied"), std::string::npos);
}

TEST_F(MainWindowPictures, AreCopiedWithTheirAlpha) {
    ASSERT_TRUE(m_window->Pictures().CopyPicture({.size = {}, .isTransparent = true}));
    const QImage image = qvariant_cast<QImage>(QApplication::clipboard()->mimeData()->imageData());
    ASSERT_TRUE(image.hasAlphaChannel());
    EXPECT_EQ(image.pixel(1, 1), 0u);
    EXPECT_EQ(qAlpha(image.pixel(image.width() / 2, image.height() / 2)), 255);
}

// ---- the dialog

TEST_F(MainWindowPictures, AreSavedAsTheDialogSays) {
    const QSize view = Viewer().DeviceSize();
    const DialogAnswer<PictureDialog> look([&](PictureDialog& dialog) {
        EXPECT_EQ(dialog.Look().size, view);
        auto& factor = *dialog.findChild<QComboBox*>("factor");
        factor.setCurrentIndex(1);
        emit factor.activated(1);
        dialog.findChild<QCheckBox*>("transparent")->setChecked(true);
        dialog.accept();
    });
    bool hasFile = false;
    QObject::connect(&m_window->Pictures(), &PictureCommands::Reported, m_window.get(), [&] { hasFile = true; });
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
        auto* const dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr) return;
        EXPECT_EQ(dialog->nameFilters().size(), 1) << "no JPEG for a transparent picture";
        dialog->findChild<QLineEdit*>("fileNameEdit")->setText(QString::fromStdString(m_folder / "chosen"));
        static_cast<QDialog*>(dialog)->accept();
    });
    poll.start(10);
    Trigger("Save view as picture...");
    EXPECT_TRUE(look.WasShown());
    EXPECT_TRUE(hasFile);
    const QImage image(QString::fromStdString(m_folder / "chosen.png"));
    EXPECT_EQ(image.size(), 2 * view);
    EXPECT_TRUE(image.hasAlphaChannel());
}

TEST(PictureDialog, KeepsTheShapeOfTheView) {
    PictureDialog dialog({1200, 800}, {}, 16384);
    auto& width = *dialog.findChild<QSpinBox*>("width");
    auto& height = *dialog.findChild<QSpinBox*>("height");
    width.setValue(600);
    EXPECT_EQ(height.value(), 400);
    height.setValue(1000);
    EXPECT_EQ(width.value(), 1500);
    EXPECT_EQ(dialog.findChild<QComboBox*>("factor")->currentText(), "Other");
    dialog.findChild<QCheckBox*>("keepsShape")->setChecked(false);
    width.setValue(700);
    EXPECT_EQ(dialog.Look().size, QSize(700, 1000));
}

TEST(PictureDialog, SavesOnEnter) {
    PictureDialog dialog({1200, 800}, {}, 16384);
    dialog.show();
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(&dialog, &enter);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.ChosenUse(), PictureDialog::Use::Save);
}

TEST(PictureDialog, RefusesASizeThatCannotBeDrawn) {
    PictureDialog dialog({1200, 800}, {}, 16384);
    const auto hasButtons = [&] {
        int enabled = 0;
        for (const auto* const button : dialog.findChildren<QPushButton*>()) enabled += button->isEnabled() ? 1 : 0;
        return enabled;
    };
    EXPECT_EQ(hasButtons(), 3);
    dialog.findChild<QSpinBox*>("width")->setValue(16384);
    EXPECT_EQ(hasButtons(), 1) << "Cancel";
    EXPECT_NE(dialog.findChild<QLabel*>("refusal")->text(), QString());
}

// ---- samples

TEST_F(MainWindowPictures, SamplesAreChosenForTheNextStartAndThePresentOnesAreShown) {
    QAction& present = Find<QAction>("presentSamples");
    auto* const menu = qobject_cast<QMenu*>(present.associatedObjects().value(0));
    ASSERT_NE(menu, nullptr);
    emit menu->aboutToShow();
    EXPECT_EQ(present.text(), "Now: 4 sample(s); a choice counts from the next start");
    EXPECT_TRUE(Find<QAction>("samples4").isChecked());
    Find<QAction>("samples0").trigger();
    EXPECT_EQ(StoredSamples(), 0);
    EXPECT_EQ(ObjectsInViewer(), 1) << "the scene stays";
}

TEST(StoredSamples, FollowTheSwitchOfOlderVersions) {
    ForgetSettings();
    EXPECT_EQ(StoredSamples(), 4);
    OpenSettings().setValue("view/smoothEdges", false);
    EXPECT_EQ(StoredSamples(), 0);
    StoreSamples(8);
    EXPECT_EQ(StoredSamples(), 8);
    ForgetSettings();
}

}  // namespace

// The day of an operator, by pointer and keys of the X server: open scans, place needles, save them, and see the same
// picture after the next start.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QDockWidget>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <cstdlib>

#include "ColorButton.h"
#include "EventPane.h"
#include "NeedlePanel.h"
#include "ViewerWidget.h"
#include "host/MainWindowFixture.h"
#include "host/ModalDialogs.h"
#include "host/XFocus.h"

namespace {

class MarkWorkflow : public MainWindowFixture {
protected:
    /// Opens two flat scans that face -Z, one in front of the other, in a new window that sees their front.
    void OpenScans() {
        HostOptions options;
        options.view = KV_ScenePane::ViewFromMinusZYUp;
        options.files = {m_folder / "back.pcm", m_folder / "front.pcm"};
        Show(options);
        WaitForImports();
        ASSERT_EQ(ObjectsInViewer(), 2) << Messages();
        Find<QDockWidget>("needles").raise();
        m_window->activateWindow();
        ASSERT_TRUE(WaitUntil([&] { return m_window->isActiveWindow(); }));
    }
    static void Xdotool(const std::string& commands) { ASSERT_EQ(std::system(("xdotool " + commands).c_str()), 0); }
    static std::string At(const QPoint& point) { return std::to_string(point.x()) + " " + std::to_string(point.y()); }
    /// On the screen. @param fromMiddle  of the viewer, pixels
    [[nodiscard]] QPoint InViewer(const QPoint& fromMiddle) const {
        const auto* const viewer = m_window->findChild<ViewerWidget*>();
        return viewer->mapToGlobal(viewer->rect().center()) + fromMiddle;
    }
    static void Click(const QWidget& widget) {
        Xdotool("mousemove " + At(widget.mapToGlobal(QPoint(12, widget.height() / 2))) + " click 1");
    }
    void DoubleClick(const QPoint& fromMiddle) const {
        Xdotool("mousemove " + At(InViewer(fromMiddle)) + " click --repeat 2 --delay 5 1");
    }
    /// Presses a key in the viewer and waits until it was handled, and with it all input before.
    void Key(const std::string& name, int code) const {
        ASSERT_TRUE(WaitUntil([&] { return FocusedWindow() == m_window->Pane()->NativeWindow(); }));
        const QString line = QString("CustomKeyDown(nChar = %1,").arg(code);
        const auto before = m_window->Events().Text().count(line);
        Xdotool("key " + name);
        ASSERT_TRUE(WaitUntil([&] { return m_window->Events().Text().count(line) > before; })) << name;
    }
    void WaitForInput() const { Key("F12", 123); }
    [[nodiscard]] std::vector<NeedleMark> Marks() const { return m_window->Needles().Marks(); }
    void WaitForNeedles(std::size_t count) const {
        ASSERT_TRUE(WaitUntil([&] { return Marks().size() == count; })) << Marks().size() << "; " << Messages();
        WaitForInput();
    }
    /// Clicks a button of the pane and types a name into the dialog that it opens.
    void ChooseFile(const QString& button, const std::string& path) const {
        const DialogAnswer<QFileDialog> answer([&](QFileDialog& dialog) {
            dialog.findChild<QLineEdit*>("fileNameEdit")->setText(QString::fromStdString(path));
            static_cast<QDialog&>(dialog).accept();
        });
        Find<QPushButton>(button).click();
        ASSERT_TRUE(answer.WasShown());
    }
    /// From the front and from the side, so that pins, heads and numbers show.
    [[nodiscard]] KV_ScenePane::Picture SidePicture() const {
        EXPECT_NE(Methods().SetViewParams(-0.8f, 0, 0.6f, 0, 1, 0, 29.5f, 29.5f, 0, 1, 0), 0);
        return DrawFrame();
    }
    static std::size_t Differences(const KV_ScenePane::Picture& a, const KV_ScenePane::Picture& b) {
        if (a.pixels.size() != b.pixels.size()) return a.pixels.size() + b.pixels.size();
        std::size_t count = 0;
        for (std::size_t i = 0; i < a.pixels.size(); ++i) count += a.pixels[i] != b.pixels[i];
        return count;
    }
};

TEST_F(MarkWorkflow, NeedlesMakeTheSamePictureAfterTheNextStart) {
    WritePcm(m_folder / "back.pcm", 60, 60);
    WritePcm(m_folder / "front.pcm", 20, 20, -5);
    OpenScans();

    // Switch the mouse to needles, and place three: two with the suggested look, one with another.
    Click(Find<QCheckBox>("needleCreate"));
    ASSERT_TRUE(WaitUntil([&] { return Methods().GetNeedlePickingMode() != 0; }));
    const QPoint first(-60, 0), second(50, -70), third(70, 60);
    DoubleClick(first);
    WaitForNeedles(1);
    DoubleClick(second);
    WaitForNeedles(2);
    auto& radius = Find<QDoubleSpinBox>("needleHeadRadius");
    Click(radius);
    ASSERT_TRUE(WaitUntil([&] { return radius.hasFocus() && m_window->isActiveWindow(); }));
    Xdotool("key ctrl+a key 3 key Return");
    ASSERT_TRUE(WaitUntil([&] { return radius.value() == 3; })) << radius.value();
    emit Find<ColorButton>("needleHeadColor").ColorChosen(0x00FFFF);
    DoubleClick(third);
    WaitForNeedles(3);

    // Seen from the front, a head covers its pin. Drag the first one: the view stays.
    const auto view = View();
    const std::vector<NeedleMark> before = Marks();
    Xdotool("mousemove " + At(InViewer(first)) + " mousedown 1");
    WaitForInput();
    Xdotool("mousemove " + At(InViewer(first + QPoint(-25, -15))));
    WaitForInput();
    Xdotool("mouseup 1");
    WaitForInput();
    EXPECT_EQ(View(), view);
    std::vector<NeedleMark> marks = Marks();
    EXPECT_EQ(marks[0].pin, before[0].pin);
    // +X is at the left; the pins give the scale, 110 pixels apart.
    const float unit = (before[0].pin[0] - before[1].pin[0]) / 110;
    EXPECT_NEAR(marks[0].head[0], before[0].head[0] + 25 * unit, 1.1f * unit);
    EXPECT_NEAR(marks[0].head[1], before[0].head[1] + 15 * unit, 1.1f * unit);
    EXPECT_NEAR(marks[0].head[2], before[0].head[2], 0.01f);
    EXPECT_EQ(marks[1], before[1]);
    EXPECT_TRUE(Find<QTreeWidget>("needleList").topLevelItem(0)->isSelected());

    // Delete one with the key, and put another in its place, which gets its number.
    Xdotool("mousemove " + At(InViewer(second)) + " click 1");
    ASSERT_TRUE(WaitUntil([&] { return Find<QTreeWidget>("needleList").topLevelItem(1)->isSelected(); }));
    Key("Delete", 46);
    WaitForNeedles(2);
    DoubleClick(second + QPoint(0, 20));
    WaitForNeedles(3);
    Key("Escape", 27);
    marks = Marks();
    EXPECT_EQ(marks[0].id, 1);
    EXPECT_EQ(marks[1].id, 3);
    EXPECT_EQ(marks[2].id, 2);
    EXPECT_EQ(marks[1].look.headRadius, 3);
    EXPECT_LT(marks[0].look.headRadius, 3);

    const KV_ScenePane::Picture picture = SidePicture();
    ChooseFile("needleSave", m_folder / "marks");
    m_window->close();
    m_window.reset();

    // The next day.
    OpenScans();
    const KV_ScenePane::Picture bare = SidePicture();
    EXPECT_GT(Differences(picture, bare), 500u) << "the needles are seen";
    ChooseFile("needleLoad", m_folder / "marks.json");
    for (NeedleMark& mark : marks) mark.look.length = NeedleLook{}.length;  // it is of the pane, not of a needle
    EXPECT_EQ(Marks(), marks);
    EXPECT_EQ(Differences(picture, SidePicture()), 0u);
}

}  // namespace

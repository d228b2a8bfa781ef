// The property page on a viewer without a window: its controls, and what OK, Cancel and Apply do.
#include "PropertyDialog.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QWindow>
#include <array>
#include <cstdlib>
#include <string>

#include "KV_ScenePane/ScenePane.h"
#include "host/QtUnderXvfb.h"

namespace {

class PropertyDialogTest : public testing::Test {
protected:
    void SetUp() override {
        KV_ScenePane::WindowRequest request;
        request.kind = KV_ScenePane::WindowRequest::Kind::NoPicture;
        m_pane = CreateScenePane(request, nullptr);
        ASSERT_NE(m_pane, nullptr);
        m_dialog.SetViewer(&Methods());
        QObject::connect(&m_dialog, &PropertyDialog::Applied, [this] { ++m_applied; });
    }
    void TearDown() override { m_dialog.SetViewer(nullptr); }

    [[nodiscard]] KV_ScenePane::_DKV_ScenePane& Methods() const { return m_pane->Methods(); }
    template <class Part>
    [[nodiscard]] Part& Find(const char* name) const {
        auto* const part = m_dialog.findChild<Part*>(name);
        if (part == nullptr) throw std::runtime_error(std::string("the dialog has no ") + name);
        return *part;
    }
    [[nodiscard]] QComboBox& Mode() const { return Find<QComboBox>("DrawMode"); }
    [[nodiscard]] QCheckBox& Mosaic() const { return Find<QCheckBox>("DrawMosaic"); }
    [[nodiscard]] QCheckBox& Reduced() const { return Find<QCheckBox>("MoveReduced"); }
    [[nodiscard]] QPushButton& Button(QDialogButtonBox::StandardButton button) const {
        return *m_dialog.findChild<QDialogButtonBox*>()->button(button);
    }
    void Click(QDialogButtonBox::StandardButton button) const { Button(button).click(); }
    [[nodiscard]] bool CanApply() const { return Button(QDialogButtonBox::Apply).isEnabled(); }
    /// Draw mode, mosaic drawing and reduced movement of the viewer.
    using Properties = std::array<int, 3>;
    [[nodiscard]] Properties InViewer() const {
        return {Methods().GetDrawMode(), Methods().GetDrawMosaic() ? 1 : 0, Methods().GetMoveReduced() ? 1 : 0};
    }
    [[nodiscard]] Properties InDialog() const {
        return {Mode().currentIndex(), Mosaic().isChecked() ? 1 : 0, Reduced().isChecked() ? 1 : 0};
    }

    std::unique_ptr<KV_ScenePane::ScenePane> m_pane;
    PropertyDialog m_dialog;
    int m_applied = 0;
};

constexpr auto kOk = QDialogButtonBox::Ok, kCancel = QDialogButtonBox::Cancel, kApply = QDialogButtonBox::Apply;

// Typed here on purpose: the dialog takes them from the page of the viewer.
TEST_F(PropertyDialogTest, HasThePageWithItsLabelsKindsAndItems) {
    const auto& tabs = *m_dialog.findChild<QTabWidget*>();
    ASSERT_EQ(tabs.count(), 1);
    EXPECT_EQ(tabs.tabText(0), "General");
    auto* const form = tabs.widget(0)->findChild<QFormLayout*>();
    const auto label = [&](QWidget& widget) { return static_cast<QLabel*>(form->labelForField(&widget))->text(); };
    ASSERT_EQ(form->rowCount(), 3);
    EXPECT_EQ(label(Mode()), "Rendering Mode:");
    EXPECT_EQ(label(Mosaic()), "Mosaic Drawing:");
    EXPECT_EQ(label(Reduced()), "Reduced Movement:");
    QStringList items;
    for (int i = 0; i < Mode().count(); ++i) items << Mode().itemText(i);
    EXPECT_EQ(items, (QStringList{"Points", "Wireframe", "Flat Shaded", "Gouraud Shaded"}));
}

TEST_F(PropertyDialogTest, SaysWhatThePropertiesDo) {
    EXPECT_TRUE(Mode().toolTip().contains("How objects are drawn"));
    EXPECT_TRUE(Mosaic().toolTip().contains("changes nothing in the picture"));
    EXPECT_TRUE(Reduced().toolTip().contains("a tenth of their points"));
    for (const QWidget* const widget : {static_cast<QWidget*>(&Mode()), static_cast<QWidget*>(&Mosaic())}) {
        auto* const form = widget->parentWidget()->findChild<QFormLayout*>();
        EXPECT_EQ(form->labelForField(const_cast<QWidget*>(widget))->toolTip(), widget->toolTip());
    }
}

TEST_F(PropertyDialogTest, StartsAsThePageDoesBeforeItHasReadAViewer) {
    const PropertyDialog dialog;
    EXPECT_EQ(dialog.findChild<QComboBox*>("DrawMode")->currentIndex(), -1);
    EXPECT_FALSE(dialog.findChild<QCheckBox*>("DrawMosaic")->isChecked());
    EXPECT_FALSE(dialog.findChild<QCheckBox*>("MoveReduced")->isChecked());
}

TEST_F(PropertyDialogTest, OpensWithThePropertiesOfTheViewer) {
    Methods().SetDrawMode(1);
    Methods().SetDrawMosaic(KV_ScenePane::kVariantTrue);
    m_dialog.ShowPage();
    EXPECT_TRUE(m_dialog.isVisible());
    EXPECT_FALSE(m_dialog.isModal());
    EXPECT_EQ(InDialog(), (Properties{1, 1, 0}));
    EXPECT_FALSE(CanApply());
}

TEST_F(PropertyDialogTest, DoesNotOpenWithoutAViewer) {
    PropertyDialog dialog;
    dialog.ShowPage();
    EXPECT_FALSE(dialog.isVisible());
}

TEST_F(PropertyDialogTest, SetsEachPropertyByItsOwnControl) {
    for (int changed = 0; changed < 3; ++changed) {
        Methods().SetDrawMode(3);
        Methods().SetDrawMosaic(KV_ScenePane::kVariantFalse);
        Methods().SetMoveReduced(KV_ScenePane::kVariantFalse);
        m_dialog.ShowPage();
        Properties expected{3, 0, 0};
        expected.at(static_cast<std::size_t>(changed)) = changed == 0 ? 0 : 1;
        if (changed == 0) Mode().setCurrentIndex(0);
        if (changed == 1) Mosaic().setChecked(true);
        if (changed == 2) Reduced().setChecked(true);
        EXPECT_EQ(InViewer(), (Properties{3, 0, 0})) << "not before it is applied";
        Click(kOk);
        EXPECT_EQ(InViewer(), expected) << changed;
        EXPECT_FALSE(m_dialog.isVisible());
        EXPECT_EQ(m_applied, changed + 1);
    }
}

TEST_F(PropertyDialogTest, SetsAllFourModes) {
    for (const int mode : {0, 1, 2, 3}) {
        m_dialog.ShowPage();
        Mode().setCurrentIndex(mode);
        Click(kOk);
        EXPECT_EQ(Methods().GetDrawMode(), mode);
    }
}

TEST_F(PropertyDialogTest, CanBeAppliedOnlyWhileItDiffersFromTheViewer) {
    m_dialog.ShowPage();
    EXPECT_FALSE(CanApply());
    Mosaic().click();
    EXPECT_TRUE(CanApply());
    Mosaic().click();
    EXPECT_FALSE(CanApply()) << "it is as it was";
    Mode().setCurrentIndex(2);
    EXPECT_TRUE(CanApply());
    Click(kApply);
    EXPECT_EQ(InViewer(), (Properties{2, 0, 0}));
    EXPECT_FALSE(CanApply());
    EXPECT_TRUE(m_dialog.isVisible());
}

TEST_F(PropertyDialogTest, CancelDropsWhatWasNotAppliedOnly) {
    m_dialog.ShowPage();
    Mode().setCurrentIndex(1);
    Click(kApply);
    Mode().setCurrentIndex(0);
    Mosaic().setChecked(true);
    Click(kCancel);
    EXPECT_FALSE(m_dialog.isVisible());
    EXPECT_EQ(InViewer(), (Properties{1, 0, 0}));
    m_dialog.ShowPage();
    EXPECT_EQ(InDialog(), (Properties{1, 0, 0})) << "it opens without the changes that were dropped";
}

TEST_F(PropertyDialogTest, OkWithoutAChangeModifiesNothing) {
    (void)m_pane->SaveProperties(KV_ScenePane::PropertyFormat::Text);
    m_dialog.ShowPage();
    Click(kOk);
    EXPECT_FALSE(m_dialog.isVisible());
    EXPECT_FALSE(m_pane->IsModified());
    EXPECT_EQ(m_applied, 0);
}

TEST_F(PropertyDialogTest, ShowsNoModeForThoseThatItDoesNotHaveAndKeepsThem) {
    for (const int mode : {4, 5, 6, 7}) {
        Methods().SetDrawMode(static_cast<std::int16_t>(mode));
        Methods().SetDrawMosaic(KV_ScenePane::kVariantFalse);
        m_dialog.ShowPage();
        EXPECT_EQ(Mode().currentIndex(), -1);
        EXPECT_EQ(Mode().currentText(), "");
        EXPECT_EQ(Mode().placeholderText(), "(another mode, see the Render menu)");
        Mosaic().setChecked(true);
        Click(mode % 2 == 0 ? kApply : kOk);
        EXPECT_EQ(InViewer(), (Properties{mode, 1, 0}));
        m_dialog.reject();
    }
    Methods().SetDrawMode(5);
    m_dialog.ShowPage();
    Mode().setCurrentIndex(3);
    Click(kApply);
    EXPECT_EQ(Methods().GetDrawMode(), 3);
}

TEST_F(PropertyDialogTest, ShowsWhereAnotherModeIsChosen) {
    Methods().SetDrawMode(5);
    m_dialog.ShowPage();
    ASSERT_TRUE(WaitUntil([&] { return m_dialog.windowHandle()->isExposed(); }));
    const int text = Mode().fontMetrics().horizontalAdvance(Mode().placeholderText());
    EXPECT_GT(text, 0);
    EXPECT_GT(Mode().width(), text) << "it is elided";
    const QImage withText = Mode().grab().toImage();
    Mode().setPlaceholderText({});
    EXPECT_NE(Mode().grab().toImage(), withText);
}

TEST_F(PropertyDialogTest, FollowsTheViewerButKeepsWhatTheUserChanged) {
    m_dialog.ShowPage();
    Reduced().setChecked(true);
    Methods().SetDrawMode(1);
    m_dialog.Follow();
    EXPECT_EQ(InDialog(), (Properties{1, 0, 1}));
    EXPECT_TRUE(CanApply());
    Methods().SetDrawMode(6);
    m_dialog.Follow();
    EXPECT_EQ(Mode().currentIndex(), -1);
    Methods().SetMoveReduced(KV_ScenePane::kVariantTrue);  // what the user wanted
    m_dialog.Follow();
    EXPECT_FALSE(CanApply());
    Methods().SetMoveReduced(KV_ScenePane::kVariantFalse);
    m_dialog.Follow();
    EXPECT_FALSE(Reduced().isChecked()) << "there was no change of the user any more";
}

TEST_F(PropertyDialogTest, AppliesAChangeOverALaterOneOfTheViewer) {
    m_dialog.ShowPage();
    Mode().setCurrentIndex(0);
    Methods().SetDrawMode(2);
    m_dialog.Follow();
    EXPECT_EQ(Mode().currentIndex(), 0);
    Click(kOk);
    EXPECT_EQ(Methods().GetDrawMode(), 0);
}

TEST_F(PropertyDialogTest, KeepsItsChangesWhenItIsOpenedAgain) {
    m_dialog.ShowPage();
    Mode().setCurrentIndex(0);
    m_dialog.ShowPage();
    EXPECT_EQ(Mode().currentIndex(), 0);
    EXPECT_TRUE(CanApply());
}

TEST_F(PropertyDialogTest, CanOnlyBeCancelledWhileItIsNotUsable) {
    m_dialog.ShowPage();
    Mosaic().setChecked(true);
    m_dialog.SetUsable(false);
    EXPECT_FALSE(Mosaic().isEnabled());
    EXPECT_FALSE(CanApply());
    EXPECT_FALSE(Button(kOk).isEnabled());
    EXPECT_TRUE(Button(kCancel).isEnabled());
    m_dialog.SetUsable(true);
    EXPECT_TRUE(Mosaic().isEnabled());
    EXPECT_TRUE(CanApply());
}

TEST_F(PropertyDialogTest, ClosesWithoutAChangeWhenTheViewerIsGone) {
    m_dialog.ShowPage();
    Mosaic().setChecked(true);
    m_dialog.SetViewer(nullptr);
    EXPECT_FALSE(m_dialog.isVisible());
    EXPECT_EQ(InViewer(), (Properties{3, 0, 0}));
}

// ---- keys of the X server

class PropertyDialogKeys : public PropertyDialogTest {
protected:
    void SetUp() override {
        PropertyDialogTest::SetUp();
        m_dialog.ShowPage();
        ASSERT_TRUE(WaitUntil([&] { return m_dialog.isActiveWindow() && Mode().hasFocus(); }));
    }
    static void Keys(const std::string& keys) { ASSERT_EQ(std::system(("xdotool key " + keys).c_str()), 0); }
};

TEST_F(PropertyDialogKeys, ReachEveryControlAndButton) {
    Keys("Up Tab space Tab space");  // "Flat Shaded", both boxes
    ASSERT_TRUE(WaitUntil([&] { return InDialog() == (Properties{2, 1, 1}); }));
    EXPECT_EQ(InViewer(), (Properties{3, 0, 0}));
    Keys("Return");
    EXPECT_TRUE(WaitUntil([&] { return !m_dialog.isVisible(); }));
    EXPECT_EQ(InViewer(), (Properties{2, 1, 1}));
}

TEST_F(PropertyDialogKeys, ApplyByTheButton) {
    Keys("w");  // the item by its first letter
    ASSERT_TRUE(WaitUntil([&] { return CanApply(); }));
    for (int i = 0; i < 8 && !Button(kApply).hasFocus(); ++i) {
        const QWidget* const before = QApplication::focusWidget();
        Keys("Tab");
        ASSERT_TRUE(WaitUntil([&] { return QApplication::focusWidget() != before; }));
    }
    ASSERT_TRUE(Button(kApply).hasFocus());
    Keys("space");
    EXPECT_TRUE(WaitUntil([&] { return InViewer() == (Properties{1, 0, 0}); }));
    EXPECT_TRUE(m_dialog.isVisible());
}

TEST_F(PropertyDialogKeys, CancelByEscape) {
    Keys("Tab space");
    ASSERT_TRUE(WaitUntil([&] { return CanApply(); }));
    Keys("Escape");
    EXPECT_TRUE(WaitUntil([&] { return !m_dialog.isVisible(); }));
    EXPECT_EQ(InViewer(), (Properties{3, 0, 0}));
}

}  // namespace

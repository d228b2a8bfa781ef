// The pane of residuals: the list, the mark of the largest one, and the copy.
#include "ResidualPanel.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>

#include "host/CommaLocale.h"
#include "host/QtUnderXvfb.h"

namespace {

KV_ScenePane::AlignmentResult TwoPairs() {
    KV_ScenePane::AlignmentResult result;
    result.isFound = true;
    result.pairs = {{{{1, 2, 3}, {}}, {{4, 5, 6}, {}}}, {{{0.5f, 0, 0}, {}}, {{0, -0.25f, 0}, {}}}};
    result.residuals = {0.125, 0.25};
    result.rms = 0.1875;
    return result;
}

class ResidualPanelTest : public testing::Test {
protected:
    [[nodiscard]] std::vector<std::string> Rows() const {
        const auto* const list = m_panel.findChild<QTreeWidget*>();
        std::vector<std::string> rows;
        for (int i = 0; i < list->topLevelItemCount(); ++i) {
            QStringList texts;
            for (int column = 0; column < ResidualPanel::kColumnCount; ++column)
                texts << list->topLevelItem(i)->text(column);
            rows.push_back(texts.join(" | ").toStdString());
        }
        return rows;
    }
    ResidualPanel m_panel;
};

TEST_F(ResidualPanelTest, MarksTheLargestResidual) {
    m_panel.Show(TwoPairs(), "a sentence");
    EXPECT_EQ(Rows(), (std::vector<std::string>{"1 | 0.1250 | 1, 2, 3 | 4, 5, 6",
                                                "2 | 0.2500 largest | 0.5, 0, 0 | 0, -0.25, 0"}));
    const auto* const list = m_panel.findChild<QTreeWidget*>();
    EXPECT_FALSE(list->topLevelItem(0)->font(ResidualPanel::kResidual).bold());
    EXPECT_TRUE(list->topLevelItem(1)->font(ResidualPanel::kResidual).bold());
    EXPECT_EQ(m_panel.findChild<QLabel*>("alignmentSummary")->text(), "a sentence");
}

TEST_F(ResidualPanelTest, ShowsThePairsThatGaveNoTransformWithoutResiduals) {
    KV_ScenePane::AlignmentResult failed = TwoPairs();
    failed.isFound = false;
    failed.residuals.clear();
    m_panel.Show(failed, "");
    EXPECT_EQ(Rows(), (std::vector<std::string>{"1 |  | 1, 2, 3 | 4, 5, 6", "2 |  | 0.5, 0, 0 | 0, -0.25, 0"}));
    EXPECT_EQ(ResidualText(failed).count('\n'), 3) << "titles and two pairs, no rms";
}

TEST_F(ResidualPanelTest, CopiesAllNumbersInEveryLocale) {
    const CommaLocale locale;
    if (!locale.IsSet()) GTEST_SKIP() << "no locale with a decimal comma can be made";
    m_panel.Show(TwoPairs(), "");
    m_panel.findChild<QPushButton*>("copyResiduals")->click();
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(),
              "pair\tresidual\tmoving x\ty\tz\tfixed x\ty\tz\n"
              "1\t0.125\t1\t2\t3\t4\t5\t6\n"
              "2\t0.25\t0.5\t0\t0\t0\t-0.25\t0\n"
              "rms\t0.1875\n");
}

TEST_F(ResidualPanelTest, HasNothingToCopyAtTheStartAndAfterwards) {
    EXPECT_FALSE(m_panel.findChild<QPushButton*>("copyResiduals")->isEnabled());
    m_panel.Show(TwoPairs(), "");
    EXPECT_TRUE(m_panel.findChild<QPushButton*>("copyResiduals")->isEnabled());
    m_panel.Clear();
    EXPECT_TRUE(Rows().empty());
    EXPECT_FALSE(m_panel.findChild<QPushButton*>("copyResiduals")->isEnabled());
}

}  // namespace

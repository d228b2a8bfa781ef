// The numbers of a transform as they are shown and copied.
#include "TransformPanel.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QPushButton>
#include <QTextStream>
#include <cmath>
#include <random>

#include "host/CommaLocale.h"
#include "host/QtUnderXvfb.h"

namespace {

class TransformPanelTest : public testing::Test {
protected:
    [[nodiscard]] std::string Number(int row, int column) const {
        return m_panel.findChild<QLabel*>(QString("transform%1%2").arg(row).arg(column))->text().toStdString();
    }
    [[nodiscard]] std::string Text(const char* label) const {
        return m_panel.findChild<QLabel*>(label)->text().toStdString();
    }
    [[nodiscard]] QPushButton& Copy() const { return *m_panel.findChild<QPushButton*>("transformCopy"); }

    TransformPanel m_panel;
};

TEST_F(TransformPanelTest, ShowsNothingToCopyWithoutAnObject) {
    EXPECT_EQ(Text("transformName"), "Select an object in the list.");
    EXPECT_EQ(Number(0, 0), "");
    EXPECT_FALSE(Copy().isEnabled());
    const TransformPanel::Shown shown{"a.pcm", "As imported", {}};
    m_panel.Show(&shown);
    EXPECT_TRUE(Copy().isEnabled());
    m_panel.Show(nullptr);
    EXPECT_EQ(Text("transformName"), "Select an object in the list.");
    EXPECT_EQ(Text("transformState"), "");
    EXPECT_EQ(Number(3, 3), "");
    EXPECT_FALSE(Copy().isEnabled());
}

TEST_F(TransformPanelTest, ShowsRowsWithTheDigitsOfUse) {
    const TransformPanel::Shown shown{"a <b>.pcm",
                                      "Moved, not saved",
                                      {0.5f, -0.1234567f, -4e-7f, 1234.56789f, 0, 1, 0, -2e7f, 0, 0, 1, 3, 0, 0, 0, 1}};
    m_panel.Show(&shown);
    EXPECT_EQ(Text("transformName"), "a <b>.pcm");
    EXPECT_EQ(Text("transformState"), "Moved, not saved");
    EXPECT_EQ(Number(0, 0), "0.500000");
    EXPECT_EQ(Number(0, 1), "-0.123457");
    EXPECT_EQ(Number(0, 2), "0.000000") << "without a minus";
    EXPECT_EQ(Number(0, 3), "1234.5679");
    EXPECT_EQ(Number(1, 3), "-2e+07");
    EXPECT_EQ(Number(2, 3), "3.0000");
    EXPECT_EQ(Number(3, 3), "1.0000");
}

TEST_F(TransformPanelTest, CopiesFloatsThatReadBackAsTheSame) {
    const CommaLocale locale;
    std::mt19937 random(7);
    std::normal_distribution<float> normal;
    for (int i = 0; i < 100; ++i) {
        TransformPanel::Shown shown;
        for (float& value : shown.transform) value = std::ldexp(normal(random), static_cast<int>(random() % 40) - 20);
        m_panel.Show(&shown);
        Copy().click();
        const QStringList lines = QApplication::clipboard()->text().split('\n');
        ASSERT_EQ(lines.size(), 5);
        EXPECT_EQ(lines[4], "") << "each line is ended";
        for (int row = 0; row < 4; ++row) {
            const QStringList numbers = lines[row].split('\t');
            ASSERT_EQ(numbers.size(), 4);
            for (int column = 0; column < 4; ++column)
                EXPECT_EQ(numbers[column].toFloat(), shown.transform[static_cast<std::size_t>(4 * row + column)]);
        }
    }
}

}  // namespace

#include "MessagePane.h"

#include <gtest/gtest.h>

#include <QScrollBar>
#include <QTextBlock>
#include <QWindow>

#include "host/QtUnderXvfb.h"

namespace {

/// With lines that are wrapped, as messages are, and with lines that are not, as events are.
class MessagePaneTest : public testing::TestWithParam<QPlainTextEdit::LineWrapMode> {
protected:
    void SetUp() override {
        m_pane.setLineWrapMode(GetParam());
        m_pane.resize(200, 120);
        m_pane.show();
        ASSERT_TRUE(WaitUntil([&] { return m_pane.windowHandle()->isExposed() && m_pane.viewport()->height() > 0; }));
    }
    /// Adds numbered lines one by one, with the event loop in between, as events are added.
    void AddLines(int count) {
        for (int i = 0; i < count; ++i) {
            m_pane.AddText(QString::number(i));
            QCoreApplication::processEvents();
        }
    }
    void AddWideLine() {
        m_pane.AddText(QString(400, 'x'));
        const bool isWrapped = GetParam() == QPlainTextEdit::WidgetWidth;
        ASSERT_TRUE(WaitUntil([&] { return m_pane.horizontalScrollBar()->isVisible() != isWrapped; }));
    }
    [[nodiscard]] bool ShowsItsLastLine() {
        QCoreApplication::processEvents();
        QTextCursor end(m_pane.document());
        end.movePosition(QTextCursor::End);
        const QRect line = m_pane.cursorRect(end);
        return line.top() >= 0 && line.bottom() <= m_pane.viewport()->height();
    }
    [[nodiscard]] QString FirstLineInSight() const { return m_pane.cursorForPosition({2, 2}).block().text(); }

    MessagePane m_pane;
};

TEST_P(MessagePaneTest, FollowsItsLines) {
    AddLines(30);
    EXPECT_TRUE(ShowsItsLastLine());
}

TEST_P(MessagePaneTest, FollowsALineWiderThanThePaneAndTheLinesAfterIt) {
    AddLines(30);
    AddWideLine();
    EXPECT_TRUE(ShowsItsLastLine()) << "the horizontal bar covers no line";
    AddLines(1);
    EXPECT_TRUE(ShowsItsLastLine());
    AddLines(20);
    EXPECT_TRUE(ShowsItsLastLine());
}

TEST_P(MessagePaneTest, FollowsAWideLineAlsoWhenThePaneHeightIsNoMultipleOfALine) {
    for (int height = 80; height < 80 + m_pane.fontMetrics().lineSpacing(); ++height) {
        m_pane.clear();
        m_pane.resize(200, height);
        AddLines(30);
        AddWideLine();
        EXPECT_TRUE(ShowsItsLastLine()) << height;
        AddLines(10);
        EXPECT_TRUE(ShowsItsLastLine()) << height;
    }
}

TEST_P(MessagePaneTest, FollowsLinesWhenTheFirstOneIsWide) {
    AddWideLine();
    AddLines(30);
    EXPECT_TRUE(ShowsItsLastLine());
}

TEST_P(MessagePaneTest, FollowsManyLinesOfOneText) {
    m_pane.AddText(QString("a\n").repeated(50) + QString(400, 'x') + QString("\nb").repeated(3));
    EXPECT_TRUE(ShowsItsLastLine());
}

TEST_P(MessagePaneTest, ShowsItsEndWhenItIsMadeSmallerOrLarger) {
    AddLines(30);
    m_pane.resize(200, 70);
    EXPECT_TRUE(ShowsItsLastLine());
    m_pane.resize(200, 300);
    AddLines(1);
    EXPECT_TRUE(ShowsItsLastLine());
}

TEST_P(MessagePaneTest, ShowsTheEndOfLinesThatWereAddedWhileItWasHidden) {
    m_pane.hide();
    AddLines(30);
    m_pane.AddText(QString(400, 'x'));
    AddLines(30);
    m_pane.show();
    EXPECT_TRUE(ShowsItsLastLine());
}

TEST_P(MessagePaneTest, KeepsThePositionOfAReaderWhoScrolledUp) {
    AddLines(30);
    m_pane.verticalScrollBar()->setValue(4);
    ASSERT_EQ(FirstLineInSight(), "4");
    AddWideLine();
    AddLines(10);
    EXPECT_EQ(FirstLineInSight(), "4");
    m_pane.verticalScrollBar()->setValue(m_pane.verticalScrollBar()->maximum() - 2);
    ASSERT_FALSE(ShowsItsLastLine());
    AddLines(5);
    EXPECT_FALSE(ShowsItsLastLine()) << "just above the end is not the end";
}

TEST_P(MessagePaneTest, FollowsAgainWhenTheReaderHasScrolledToTheEnd) {
    AddLines(30);
    m_pane.verticalScrollBar()->setValue(4);
    AddWideLine();
    m_pane.verticalScrollBar()->setValue(m_pane.verticalScrollBar()->maximum());
    AddLines(10);
    EXPECT_TRUE(ShowsItsLastLine());
}

TEST_P(MessagePaneTest, FollowsAgainAfterItWasCleared) {
    AddLines(30);
    m_pane.verticalScrollBar()->setValue(4);
    m_pane.clear();
    AddLines(30);
    EXPECT_TRUE(ShowsItsLastLine());
}

INSTANTIATE_TEST_SUITE_P(Lines, MessagePaneTest, testing::Values(QPlainTextEdit::WidgetWidth, QPlainTextEdit::NoWrap),
                         [](const auto& mode) {
                             return mode.param == QPlainTextEdit::WidgetWidth ? "Wrapped" : "NotWrapped";
                         });

TEST(MessagePane, WrapsALineThatIsWiderThanIt) {
    MessagePane pane;
    pane.resize(200, 200);
    pane.show();
    pane.AddText(QString("word ").repeated(20) + QString(100, 'x'));
    ASSERT_TRUE(WaitUntil([&] { return pane.windowHandle()->isExposed(); }));
    QTextCursor end(pane.document());
    end.movePosition(QTextCursor::End);
    EXPECT_TRUE(WaitUntil([&] { return pane.cursorRect(end).top() > 3 * pane.fontMetrics().lineSpacing(); }));
    EXPECT_EQ(pane.horizontalScrollBar()->maximum(), 0);
    EXPECT_LE(pane.cursorRect(end).right(), pane.viewport()->width());
}

}  // namespace

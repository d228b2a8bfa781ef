#include "MessagePane.h"

#include <gtest/gtest.h>

#include <QScrollBar>
#include <QTextBlock>
#include <QWindow>

#include "host/QtUnderXvfb.h"

namespace {

class MessagePaneTest : public testing::Test {
protected:
    void SetUp() override {
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
        ASSERT_TRUE(WaitUntil([&] { return m_pane.horizontalScrollBar()->isVisible(); }));
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

TEST_F(MessagePaneTest, FollowsItsLines) {
    AddLines(30);
    EXPECT_TRUE(ShowsItsLastLine());
}

TEST_F(MessagePaneTest, FollowsALineWiderThanThePaneAndTheLinesAfterIt) {
    AddLines(30);
    AddWideLine();
    EXPECT_TRUE(ShowsItsLastLine()) << "the horizontal bar covers no line";
    AddLines(1);
    EXPECT_TRUE(ShowsItsLastLine());
    AddLines(20);
    EXPECT_TRUE(ShowsItsLastLine());
}

TEST_F(MessagePaneTest, FollowsAWideLineAlsoWhenThePaneHeightIsNoMultipleOfALine) {
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

TEST_F(MessagePaneTest, FollowsLinesWhenTheFirstOneIsWide) {
    AddWideLine();
    AddLines(30);
    EXPECT_TRUE(ShowsItsLastLine());
}

TEST_F(MessagePaneTest, FollowsManyLinesOfOneText) {
    m_pane.AddText(QString("a\n").repeated(50) + QString(400, 'x') + QString("\nb").repeated(3));
    EXPECT_TRUE(ShowsItsLastLine());
}

TEST_F(MessagePaneTest, ShowsItsEndWhenItIsMadeSmallerOrLarger) {
    AddLines(30);
    m_pane.resize(200, 70);
    EXPECT_TRUE(ShowsItsLastLine());
    m_pane.resize(200, 300);
    AddLines(1);
    EXPECT_TRUE(ShowsItsLastLine());
}

TEST_F(MessagePaneTest, ShowsTheEndOfLinesThatWereAddedWhileItWasHidden) {
    m_pane.hide();
    AddLines(30);
    m_pane.AddText(QString(400, 'x'));
    AddLines(30);
    m_pane.show();
    EXPECT_TRUE(ShowsItsLastLine());
}

TEST_F(MessagePaneTest, KeepsThePositionOfAReaderWhoScrolledUp) {
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

TEST_F(MessagePaneTest, FollowsAgainWhenTheReaderHasScrolledToTheEnd) {
    AddLines(30);
    m_pane.verticalScrollBar()->setValue(4);
    AddWideLine();
    m_pane.verticalScrollBar()->setValue(m_pane.verticalScrollBar()->maximum());
    AddLines(10);
    EXPECT_TRUE(ShowsItsLastLine());
}

TEST_F(MessagePaneTest, FollowsAgainAfterItWasCleared) {
    AddLines(30);
    m_pane.verticalScrollBar()->setValue(4);
    m_pane.clear();
    AddLines(30);
    EXPECT_TRUE(ShowsItsLastLine());
}

}  // namespace

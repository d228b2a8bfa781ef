// What the status bar shows in windows of several widths.
#include "StatusLine.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QLabel>
#include <QLocale>
#include <QMainWindow>
#include <QSizeGrip>
#include <QToolButton>
#include <algorithm>
#include <string>

#include "host/QtUnderXvfb.h"

namespace {

const QString kPick = "0: scan_0001.pcm   -123.456 45.6789 1000.23 mm   distance 123.456 mm";

class StatusLineTest : public testing::Test {
protected:
    StatusLineTest() {
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        m_window.setStatusBar(m_bar);
        Resize(1366);
        m_window.show();
    }
    ~StatusLineTest() override { QLocale::setDefault(m_before); }
    void Resize(int width) {
        m_window.resize(width, 200);
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();  // what a part does when its space has changed
    }
    template <class Part>
    [[nodiscard]] Part& Find(const char* name) const {
        return *m_bar->findChild<Part*>(name);
    }
    [[nodiscard]] std::string Text(const char* label) const {
        const auto& found = Find<QLabel>(label);
        return found.isHidden() ? "" : found.text().toStdString();
    }
    /// No part lies outside the bar or over another one, and each label has the width of its text.
    void ExpectNothingIsCutOff() const {
        QCoreApplication::processEvents();
        int end = 0, seen = 0;
        QList<QWidget*> parts;
        for (QWidget* const part : m_bar->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
            if (part->isVisible() && qobject_cast<QSizeGrip*>(part) == nullptr) parts << part;
        }
        std::ranges::sort(parts, {}, &QWidget::x);
        for (const QWidget* const part : parts) {
            ++seen;
            EXPECT_GE(part->x(), end) << part->objectName().toStdString();
            end = part->geometry().right();
            EXPECT_LT(end, m_bar->width()) << part->objectName().toStdString();
        }
        EXPECT_GT(seen, 0);
        for (const QLabel* const label : m_bar->findChildren<QLabel*>()) {
            if (!label->isVisible()) continue;
            EXPECT_GE(label->width(), label->fontMetrics().horizontalAdvance(label->text()))
                << label->objectName().toStdString() << ": " << label->text().toStdString();
        }
    }

    const QLocale m_before;
    QMainWindow m_window;
    StatusLine* const m_bar = new StatusLine;
};

TEST_F(StatusLineTest, CountsObjectsAndTrianglesWithSeparators) {
    EXPECT_EQ(Text("sceneCounts").substr(0, 8), "0 object");
    m_bar->ShowScene({1, 1, 1'234'567, 1'234'567});
    EXPECT_EQ(Text("sceneCounts").substr(0, 8), "1 object");
    EXPECT_NE(Text("sceneCounts").find(", 1,234,567 triangle"), std::string::npos) << Text("sceneCounts");
    m_bar->ShowScene({1, 3, 1'000, 1'234'567});
    EXPECT_EQ(Text("sceneCounts").substr(0, 13), "1 of 3 object");
    EXPECT_NE(Text("sceneCounts").find(", 1,000 of 1,234,567 triangle"), std::string::npos) << Text("sceneCounts");
}

TEST_F(StatusLineTest, WritesNumbersAsTheLocaleDoes) {
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    m_bar->ShowScene({1, 1, 1'234'567, 1'234'567});
    EXPECT_NE(Text("sceneCounts").find("1.234.567"), std::string::npos) << Text("sceneCounts");
    m_bar->ShowFrameTime(0.0042);
    EXPECT_EQ(Text("frameTime"), "4,2 ms");
}

TEST_F(StatusLineTest, ShowsTheTimeOfAFrame) {
    EXPECT_EQ(Text("frameTime"), "");
    m_bar->ShowFrameTime(0.0042);
    EXPECT_EQ(Text("frameTime"), "4.2 ms");
    m_bar->ShowFrameTime(0.1234);
    EXPECT_EQ(Text("frameTime"), "123 ms");
    m_bar->ShowFrameTime(3.21);
    EXPECT_EQ(Text("frameTime"), "3.2 s");
}

TEST_F(StatusLineTest, ReportsItsButtons) {
    int undos = 0, failures = 0, points = 0, distances = 0;
    QObject::connect(m_bar, &StatusLine::UndoWanted, [&] { ++undos; });
    QObject::connect(m_bar, &StatusLine::FailuresWanted, [&] { ++failures; });
    QObject::connect(m_bar, &StatusLine::PointCopyWanted, [&] { ++points; });
    QObject::connect(m_bar, &StatusLine::DistanceCopyWanted, [&] { ++distances; });
    EXPECT_FALSE(Find<QWidget>("undoOffer").isVisible());
    m_bar->OfferUndo("a.pcm deleted");
    EXPECT_TRUE(Find<QToolButton>("undoOfferButton").isVisible());
    EXPECT_EQ(Text("undoOfferText"), "a.pcm deleted");
    Find<QToolButton>("undoOfferButton").click();
    m_bar->WithdrawUndo();
    EXPECT_FALSE(Find<QWidget>("undoOffer").isVisible());
    EXPECT_FALSE(Find<QToolButton>("failedFiles").isVisible());
    m_bar->ShowFailures(2);
    EXPECT_EQ(Find<QToolButton>("failedFiles").text().left(6), "2 file");
    Find<QToolButton>("failedFiles").click();
    m_bar->ShowFailures(0);
    EXPECT_FALSE(Find<QToolButton>("failedFiles").isVisible());
    EXPECT_FALSE(Find<QToolButton>("copyLastPick").isVisible());
    m_bar->ShowPick(kPick, true);
    Find<QToolButton>("copyLastPick").click();
    Find<QAction>("copyLastDistanceAction").trigger();
    EXPECT_EQ(undos + 10 * failures + 100 * points + 1000 * distances, 1111);
    m_bar->ShowPick("0: a.pcm   1 2 3 mm", false);
    EXPECT_FALSE(Find<QAction>("copyLastDistanceAction").isEnabled());
}

TEST_F(StatusLineTest, ShowsAllPartsAtTheWidthOfASmallScreen) {
    m_bar->ShowScene({24, 24, 38'123'456, 38'123'456});
    m_bar->ShowFrameTime(0.123);
    m_bar->ShowPick(kPick, true);
    ExpectNothingIsCutOff();
    EXPECT_EQ(Text("lastPick"), kPick.toStdString());
    EXPECT_NE(Text("sceneCounts").find("38,123,456"), std::string::npos);
    EXPECT_EQ(Text("frameTime"), "123 ms");
}

TEST_F(StatusLineTest, CutsNothingOffWithEveryPartAtOnce) {
    m_bar->ShowScene({12, 24, 19'123'456, 38'123'456});
    m_bar->ShowFrameTime(0.123);
    m_bar->ShowPick(kPick, true);
    m_bar->ShowFailures(2);
    m_bar->OfferUndo("A rather long name of a scan that was deleted 0123456789.pcm deleted");
    auto* const clipped = new QLabel("Clipped by the clip plane");
    m_bar->addPermanentWidget(clipped);
    m_bar->showMessage(QString(500, 'm'));
    for (const int width : {1366, 1229, 1000, 800, 640}) {
        SCOPED_TRACE(width);
        Resize(width);
        ASSERT_EQ(m_bar->width(), width) << "the parts make the window wider";
        ExpectNothingIsCutOff();
        EXPECT_TRUE(Find<QToolButton>("failedFiles").isVisible());
        EXPECT_TRUE(Find<QToolButton>("undoOfferButton").isVisible());
    }
    Resize(2000);
    EXPECT_EQ(Text("lastPick"), kPick.toStdString()) << "all of it where there is space";
    EXPECT_EQ(m_bar->currentMessage().size(), 500) << "others ask for the whole message";
    EXPECT_EQ(m_bar->toolTip().size(), 500);
}

// The message is at the left of all parts. Columns with dark pixels show where it is.
TEST_F(StatusLineTest, EndsALongMessageBeforeTheFirstPart) {
    m_bar->ShowScene({1, 1, 10, 10});
    m_bar->showMessage(QString(500, 'm'));
    QCoreApplication::processEvents();
    const QImage picture = m_bar->grab().toImage();
    const QLabel& first = Find<QLabel>("sceneCounts");
    const auto hasInk = [&](int x) {
        for (int y = 4; y + 4 < picture.height(); ++y) {
            if (qGray(picture.pixel(x, y)) < 128) return true;
        }
        return false;
    };
    int inked = 0;
    for (int x = 0; x < first.x() / 2; ++x) inked += hasInk(x) ? 1 : 0;
    EXPECT_GT(inked, first.x() / 8) << "the message";
    for (int x = first.x() - 6; x < first.x(); ++x) EXPECT_FALSE(hasInk(x)) << x;
}

}  // namespace

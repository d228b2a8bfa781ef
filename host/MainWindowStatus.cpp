// Status bar and title: what is open, what a frame costs, and which files failed.
#include <QClipboard>
#include <QDockWidget>
#include <QGuiApplication>
#include <QTextBlock>
#include <QTextDocument>
#include <QTimer>
#include <utility>

#include "MainWindow.h"
#include "MarkerPanel.h"
#include "MessagePane.h"
#include "ObjectList.h"
#include "StatusLine.h"
#include "ViewerWidget.h"
#include "WindowTitle.h"

namespace {

constexpr int kFrameDelayMs = 200;  // a number that changes more often cannot be read

/// The last line that names the file; the last line of all without one.
QTextBlock LineAbout(const QTextDocument& document, const QString& file) {
    for (QTextBlock line = document.lastBlock(); line.isValid(); line = line.previous()) {
        if (line.text().contains(file)) return line;
    }
    return document.lastBlock();
}

}  // namespace

void MainWindow::MakeStatus() {
    m_pStatus = new StatusLine;
    setStatusBar(m_pStatus);
    m_pFrameDelay = new QTimer(this);
    m_pFrameDelay->setSingleShot(true);
    m_pFrameDelay->setInterval(kFrameDelayMs);
    connect(m_pFrameDelay, &QTimer::timeout, this, [this] {
        if (Pane() != nullptr) m_pStatus->ShowFrameTime(Pane()->GetFrameStatistics().seconds);
        ShowSceneCounts();
    });
    connect(m_pStatus, &StatusLine::PointCopyWanted, this, &MainWindow::CopyLastPick);
    connect(m_pStatus, &StatusLine::DistanceCopyWanted, this, &MainWindow::CopyPickDistance);
    connect(m_pStatus, &StatusLine::FailuresWanted, this, &MainWindow::ShowFailures);
    connect(this, &MainWindow::FileFailed, this, &MainWindow::CountFailure);
    connect(this, &MainWindow::ImportFinished, this, &MainWindow::FollowFiles);
}

void MainWindow::FollowFrames() {
    if (Pane() == nullptr) return;
    const std::uint64_t frames = Pane()->GetFrameStatistics().count;
    if (std::exchange(m_nFramesSeen, frames) != frames && !m_pFrameDelay->isActive()) m_pFrameDelay->start();
}

void MainWindow::ShowSceneCounts() {
    StatusLine::Scene scene;
    for (const int index : m_pObjects->PresentObjects()) {
        const std::int32_t triangles = m_pObjects->TrianglesOf(index);
        ++scene.objects;
        scene.triangles += triangles;
        if (m_pObjects->IsHidden(index)) continue;
        ++scene.shownObjects;
        scene.shownTriangles += triangles;
    }
    m_pStatus->ShowScene(scene);
}

void MainWindow::FollowFiles() {
    const std::vector<ObjectRow> rows = m_pObjects->Rows();
    std::vector<std::string> files;
    for (const int index : m_pObjects->PresentObjects()) files.push_back(rows[static_cast<std::size_t>(index)].file);
    const std::vector<std::string> points = m_pMarkers->PointFiles();
    files.insert(files.end(), points.begin(), points.end());
    setWindowTitle(WindowTitle(files));
    ShowSceneCounts();
}

void MainWindow::CopyLastPick() {
    if (!m_vLastPicks.empty()) QGuiApplication::clipboard()->setText(PointText(m_vLastPicks.back(), "\t"));
}

// ---- files that failed

void MainWindow::CountFailure(const std::string& file) {
    if (m_nFailures++ == 0)
        m_firstFailure = QTextCursor(LineAbout(*m_pMessages->document(), QString::fromStdString(file)));
    m_pStatus->ShowFailures(m_nFailures);
}

void MainWindow::ShowFailures() {
    for (QWidget* part = m_pMessages; part != nullptr; part = part->parentWidget()) {
        if (auto* const dock = qobject_cast<QDockWidget*>(part)) {
            dock->show();
            dock->raise();
        }
    }
    m_pMessages->setTextCursor(m_firstFailure);
    m_pMessages->ensureCursorVisible();
    m_nFailures = 0;
    m_pStatus->ShowFailures(0);
}

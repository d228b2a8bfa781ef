// A host window on the X server of the test program, and access to its parts.
#pragma once
#include <gtest/gtest.h>

#include <QAction>
#include <QDockWidget>
#include <QWindow>
#include <array>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "FileListDialog.h"
#include "KV_ScenePane/ScenePane.h"
#include "LogoPanel.h"
#include "MainWindow.h"
#include "MessagePane.h"
#include "ObjectList.h"
#include "Settings.h"
#include "WindowShell.h"
#include "host/ModalDialogs.h"
#include "host/QtUnderXvfb.h"
#include "host/ScanFiles.h"

inline constexpr std::uint32_t kBackground = 0x191932;  // of the viewer, 0xRRGGBB

class MainWindowFixture : public testing::Test {
protected:
    /// Without what other tests have stored: the first window of a test is one of a first start.
    MainWindowFixture() { ForgetSettings(); }

    // Throwing and not ASSERT_TRUE(): an assertion in a helper ends the helper only, and the test would go on with a
    // window that has no viewer.

    /// Shows a new window and waits until it has a viewer, its panels know the viewer, and the window is on the screen
    /// in its final place.
    /// @throws std::runtime_error with what the window says instead
    void Show(const HostOptions& options = {}) {
        m_window = std::make_unique<MainWindow>(options);
        m_window->show();
        const auto isReady = [&] {
            // The panels are given the viewer later than it is created, by a queued call.
            return m_window->Pane() != nullptr && m_window->Logo().isEnabled() && m_window->windowHandle()->isExposed();
        };
        if (!WaitUntil(isReady)) throw std::runtime_error("the window has no viewer: " + Messages());
        // The window is placed and its panes are narrowed by a call that was queued when it came on the screen: a test
        // that clicks needs the layout after that.
        QCoreApplication::sendPostedEvents(m_window->findChild<WindowShell*>(), QEvent::MetaCall);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    }
    /// @throws std::runtime_error
    void WaitForImports() {
        if (!WaitUntil([&] { return !m_window->IsImporting(); }))
            throw std::runtime_error("the import does not end: " + Messages());
    }
    void Import(const std::vector<std::string>& files) {
        m_window->OpenFiles(files);
        WaitForImports();
    }
    [[nodiscard]] int ObjectsInViewer() const { return m_window->Pane()->Methods().GetNumObjects(); }
    [[nodiscard]] std::vector<std::string> Rows() const {
        std::vector<std::string> names;
        for (int i = 0; i < m_window->Objects().topLevelItemCount(); ++i)
            names.push_back(m_window->Objects().topLevelItem(i)->text(ObjectList::kName).toStdString());
        return names;
    }
    [[nodiscard]] std::string Messages() const { return m_window->Messages().toPlainText().toStdString(); }
    /// A frame that is drawn now, whatever repaints are queued. @throws std::runtime_error
    [[nodiscard]] KV_ScenePane::Picture DrawFrame() const {
        KV_ScenePane::Picture picture;
        if (!m_window->Pane()->CapturePicture(&picture)) throw std::runtime_error("the viewer draws no frame");
        return picture;
    }
    /// For tests of failures, which open the messages: the viewer has its later size from the start.
    void OpenMessages() const {
        const std::int32_t height = DrawFrame().height;
        Find<QDockWidget>("messages").show();
        if (!WaitUntil([&] { return DrawFrame().height < height; }))
            throw std::runtime_error("the messages have no space");
    }
    /// The colour in the middle of a frame that is drawn now, 0xRRGGBB.
    [[nodiscard]] std::uint32_t MiddlePixel() const {
        const KV_ScenePane::Picture picture = DrawFrame();
        const auto middle = static_cast<std::size_t>((picture.height / 2) * picture.width + picture.width / 2);
        return picture.pixels.at(middle) & 0xFFFFFF;
    }
    /// Writes scans 0.pcm, 1.pcm ... @return their paths
    [[nodiscard]] std::vector<std::string> ManyPcms(int count) const {
        std::vector<std::string> files;
        for (int i = 0; i < count; ++i) {
            files.push_back(m_folder / (std::to_string(i) + ".pcm"));
            WritePcm(files.back(), 60, 60);
        }
        return files;
    }

    template <class Part>
    [[nodiscard]] Part& Find(const QString& name) const {
        auto* const part = m_window->findChild<Part*>(name);
        if (part == nullptr) throw std::runtime_error("the window has no part with the name " + name.toStdString());
        return *part;
    }
    [[nodiscard]] KV_ScenePane::_DKV_ScenePane& Methods() const { return m_window->Pane()->Methods(); }
    /// The action of the menus with this text, without the & of its mnemonic.
    [[nodiscard]] QAction& MenuAction(const QString& text) const {
        for (QAction* const action : m_window->findChildren<QAction*>()) {
            if (action->text().remove('&') == text) return *action;
        }
        throw std::runtime_error("no menu has the action " + text.toStdString());
    }
    void Trigger(const QString& text) const { MenuAction(text).trigger(); }
    /// Answers the question, if there is one.
    void ClearByMenu() const {
        const DialogAnswer<FileListDialog> answer([](FileListDialog& dialog) { dialog.Press(QDialogButtonBox::Yes); });
        Trigger("Clear");
    }
    /// The view: axes to the right and to the top of the screen, centre, magnification.
    [[nodiscard]] std::array<float, 10> View() const {
        std::array<float, 10> v{};
        m_window->Pane()->Methods().GetViewParams(&v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6], &v[7], &v[8], &v[9]);
        return v;
    }

    const ScratchFolder m_folder;
    std::unique_ptr<MainWindow> m_window;
};

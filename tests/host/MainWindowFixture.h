// A host window on the test's own X server, and what its parts show.
#pragma once
#include <gtest/gtest.h>

#include <QAction>
#include <array>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "KV_ScenePane/ScenePane.h"
#include "LogoPanel.h"
#include "MainWindow.h"
#include "MessagePane.h"
#include "ObjectList.h"
#include "host/QtUnderXvfb.h"
#include "host/ScanFiles.h"

inline constexpr std::uint32_t kBackground = 0x191932;  // of the viewer, red first

class MainWindowFixture : public testing::Test {
protected:
    void Show(const HostOptions& options = {}) {
        m_window = std::make_unique<MainWindow>(options);
        m_window->show();
        // The panes learn of the viewer a little later than it is there.
        ASSERT_TRUE(WaitUntil([&] { return m_window->Pane() != nullptr && m_window->Logo().isEnabled(); }));
    }
    void WaitForImports() {
        ASSERT_TRUE(WaitUntil([&] { return !m_window->IsImporting(); }));
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
    [[nodiscard]] KV_ScenePane::Picture Taken() const {
        KV_ScenePane::Picture picture;
        EXPECT_TRUE(m_window->Pane()->CapturePicture(&picture));
        return picture;
    }
    /// The colour in the middle of the viewer, red first.
    [[nodiscard]] std::uint32_t MiddlePixel() const {
        const KV_ScenePane::Picture picture = Taken();
        const auto middle = static_cast<std::size_t>((picture.height / 2) * picture.width + picture.width / 2);
        return picture.pixels.at(middle) & 0xFFFFFF;
    }
    /// Files 0.pcm, 1.pcm ...
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
        if (part == nullptr) throw std::runtime_error("there is no " + name.toStdString());
        return *part;
    }
    [[nodiscard]] KV_ScenePane::_DKV_ScenePane& Methods() const { return m_window->Pane()->Methods(); }
    /// The action of the menus with that text, its mnemonic left out.
    [[nodiscard]] QAction& MenuAction(const QString& text) const {
        for (QAction* const action : m_window->findChildren<QAction*>()) {
            if (action->text().remove('&') == text) return *action;
        }
        throw std::runtime_error("no menu has " + text.toStdString());
    }
    void Trigger(const QString& text) const { MenuAction(text).trigger(); }
    /// Axes to the screen's right and top, centre and magnification of the view.
    [[nodiscard]] std::array<float, 10> View() const {
        std::array<float, 10> v{};
        m_window->Pane()->Methods().GetViewParams(&v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6], &v[7], &v[8], &v[9]);
        return v;
    }

    const ScratchFolder m_folder;
    std::unique_ptr<MainWindow> m_window;
};

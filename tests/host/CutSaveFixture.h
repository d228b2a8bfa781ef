// The saves of a host window with the sheets front.pcm and back.pcm, and what their questions and summaries say.
#pragma once
#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "MSRDLL/PcmFile.h"
#include "host/CutFixture.h"

[[nodiscard]] inline bool Has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

class CutSaveFixture : public CutFixture {
protected:
    [[nodiscard]] std::string Front() const { return m_folder / "front.pcm"; }
    [[nodiscard]] std::string Back() const { return m_folder / "back.pcm"; }
    [[nodiscard]] static std::string Bytes(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    /// Presses the tool and answers its question. @return what the question said
    [[nodiscard]] std::string Save(Button answer = QDialogButtonBox::Save) const {
        std::string text;
        const auto dialog = Answer(answer, &text);
        Tool("cutSave").trigger();
        EXPECT_TRUE(dialog.WasShown()) << Messages();
        return text;
    }
    /// Presses the tool, answers its question with Save, and closes the summary. @return what the summary said
    /// @param onDialog  called with the number of each dialog, from 0
    [[nodiscard]] std::string SaveWithSummary(const std::function<void(int)>& onDialog = {}) const {
        std::string text;
        int answered = 0;
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [&] {
            auto* const dialog = qobject_cast<FileListDialog*>(QApplication::activeModalWidget());
            if (dialog == nullptr) return;
            if (onDialog) onDialog(answered);
            text = dialog->Text().toStdString();
            dialog->Press(answered++ == 0 ? QDialogButtonBox::Save : QDialogButtonBox::Close);
        });
        timer.start(10);
        Tool("cutSave").trigger();
        EXPECT_EQ(answered, 2) << Messages();
        return text;
    }
    /// A visible cut by the outline of the middle, which leaves back.pcm alone.
    void CutFront(const Corners& corners = kMiddle) const {
        ASSERT_TRUE(CutByCall(KV_ScenePane::PolygonVisible, corners));
    }
    /// @param x  along X from the place of the import
    void MoveFront(float x) const { (void)Methods().SetTrafoOfScan(0, 1, 0, 0, x, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1); }
    [[nodiscard]] bool Close() const { return m_window->close(); }
};

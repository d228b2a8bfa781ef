// --transforms of the window: where the files of the command line are after their import.
#include <gtest/gtest.h>

#include <utility>

#include "TransformFile.h"
#include "host/MainWindowFixture.h"

namespace {

constexpr Matrix4 kIdentity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
constexpr Matrix4 kAside = {0, -1, 0, 500, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

class MainWindowPlaces : public MainWindowFixture {
protected:
    void SetUp() override {
        m_options.files = ManyPcms(2);
        m_options.transformFile = m_folder / "t.json";
        Store({{m_options.files[1], kAside}});
    }
    void Store(const std::vector<StoredTransform>& transforms) const {
        std::string reason;
        ASSERT_TRUE(WriteTransformFile(m_options.transformFile, transforms, &reason)) << reason;
    }
    void Open() {
        Show(m_options);
        if (!WaitUntil([&] { return m_window->Objects().topLevelItemCount() == 2 && !m_window->IsImporting(); }))
            throw std::runtime_error("the files are not imported: " + Messages());
    }
    void ExpectAt(std::int16_t object, const Matrix4& expected) const {
        const Matrix4 actual = TransformOf(Methods(), object).value();
        for (std::size_t i = 0; i < expected.size(); ++i)
            EXPECT_NEAR(actual[i], expected[i], 1e-6f) << "object " << object << ", element " << i;
    }

    HostOptions m_options;
};

TEST_F(MainWindowPlaces, AreThoseOfTheFileBeforeTheViewIsFitted) {
    Open();
    ExpectAt(0, kIdentity);
    ExpectAt(1, kAside);
    // The grids reach from 0 to 59 and from 441 to 500 along X: the view is fitted to both.
    EXPECT_NEAR(View()[6], 250, 1) << Messages();
    EXPECT_TRUE(m_window->HaveAllFilesAdded()) << Messages();
}

TEST_F(MainWindowPlaces, AreNotThoseOfLaterImports) {
    Open();
    Import({m_options.files[1]});
    ASSERT_EQ(ObjectsInViewer(), 3);
    ExpectAt(1, kAside);
    ExpectAt(2, kIdentity);
}

TEST_F(MainWindowPlaces, ThatCannotBeReadAreAFailureOfTheRun) {
    WriteBytes(m_options.transformFile, {std::byte{'['}, std::byte{']'}});
    std::vector<std::pair<std::string, std::string>> failed;
    m_window = std::make_unique<MainWindow>(m_options);
    QObject::connect(m_window.get(), &MainWindow::FileFailed,
                     [&](const std::string& file, const std::string& reason) { failed.emplace_back(file, reason); });
    m_window->show();
    ASSERT_TRUE(WaitUntil([&] { return !failed.empty() && !m_window->IsImporting(); })) << Messages();
    EXPECT_EQ(failed.size(), 1u);
    EXPECT_EQ(failed[0], std::pair(m_options.transformFile, std::string("not a file of transforms")));
    EXPECT_NE(Messages().find("not a file of transforms"), std::string::npos) << Messages();
    EXPECT_FALSE(m_window->HaveAllFilesAdded());
    EXPECT_EQ(ObjectsInViewer(), 2);
    ExpectAt(1, kIdentity);
}

TEST_F(MainWindowPlaces, OfOtherFilesAreAFailureOfTheRun) {
    Store({{m_folder / "other.pcm", kAside}});
    Open();
    EXPECT_FALSE(m_window->HaveAllFilesAdded());
    EXPECT_NE(Messages().find("other.pcm"), std::string::npos) << Messages();
    ExpectAt(1, kIdentity);
}

}  // namespace

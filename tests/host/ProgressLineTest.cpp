#include "ProgressLine.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <unistd.h>

#include "host/HeadlessRuns.h"

namespace {

/// What two files print, the first one named with a control character.
std::string PrintedBy(const HostOptions& options) {
    const Printed err;
    {
        ProgressLine line(options, 2, err);
        line.Show("a\033b.pcm");
        line.Show("c.pcm");
    }
    return err.Text();
}

TEST(ProgressLineOfAFile, IsPrintedOnlyWhenTheOptionsAskForIt) {
    HostOptions options;
    EXPECT_EQ(PrintedBy(options), "");
    options.progress = true;
    EXPECT_EQ(PrintedBy(options), "scenepane: 1 of 2: a?b.pcm\nscenepane: 2 of 2: c.pcm\n");
}

/// What arrives at a terminal of 20 columns.
class Terminal {
public:
    Terminal() {
        winsize size{24, 20, 0, 0};
        int inner = -1;
        if (openpty(&m_nOuter, &inner, nullptr, nullptr, &size) != 0) return;
        m_file = fdopen(inner, "w");
        fcntl(m_nOuter, F_SETFL, O_NONBLOCK);
    }
    ~Terminal() {
        if (m_file != nullptr) std::fclose(m_file);
        if (m_nOuter >= 0) close(m_nOuter);
    }
    [[nodiscard]] std::FILE* File() const { return m_file; }
    [[nodiscard]] std::string Text() const {
        std::fflush(m_file);
        char bytes[4096];
        const ssize_t count = read(m_nOuter, bytes, sizeof bytes);
        return count > 0 ? std::string(bytes, static_cast<std::size_t>(count)) : "";
    }

private:
    int m_nOuter = -1;
    std::FILE* m_file = nullptr;
};

TEST(ProgressLineOfATerminal, IsOneLineThatIsErased) {
    const Terminal terminal;
    if (terminal.File() == nullptr) GTEST_SKIP() << "this machine gives no terminal";
    {
        ProgressLine line({}, 3, terminal.File());
        line.Show("first.pcm");
        EXPECT_EQ(terminal.Text(), "\rscenepane: 1 of 3: \033[K") << "cut at the last but one column";
        line.Show("second.pcm");
        EXPECT_EQ(terminal.Text(), "") << "too soon";
        line.Erase();
        EXPECT_EQ(terminal.Text(), "\r\033[K");
        line.Erase();
    }
    EXPECT_EQ(terminal.Text(), "") << "erased once";
}

TEST(ProgressLineOfATerminal, IsNotShownForOneFileNorWhenQuiet) {
    const Terminal terminal;
    if (terminal.File() == nullptr) GTEST_SKIP() << "this machine gives no terminal";
    HostOptions quiet;
    quiet.quiet = true;
    ProgressLine({}, 1, terminal.File()).Show("a");
    ProgressLine(quiet, 2, terminal.File()).Show("a");
    EXPECT_EQ(terminal.Text(), "");
}

}  // namespace

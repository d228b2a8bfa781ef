#include "ProgressLine.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>

#include "options/TerminalText.h"

namespace {

constexpr std::chrono::milliseconds kPause{100};

/// Columns of the terminal. A longer line would go on in the next one, which is not erased.
std::size_t Columns(std::FILE* terminal) {
    winsize size{};
    const bool isKnown = ioctl(fileno(terminal), TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? size.ws_col : 80;
}

}  // namespace

// A stream in memory, as tests have, has no descriptor and is no terminal.
ProgressLine::ProgressLine(const HostOptions& options, std::size_t total, std::FILE* err)
    : m_err(err), m_nTotal(total) {
    m_bIsTerminal = fileno(err) >= 0 && isatty(fileno(err)) != 0;
    m_bIsOn = !options.quiet && (options.progress || (m_bIsTerminal && total > 1));
}

void ProgressLine::Show(const std::string& file) {
    ++m_nFile;
    if (!m_bIsOn) return;
    const auto now = std::chrono::steady_clock::now();
    if (m_bIsTerminal && m_nFile > 1 && now - m_last < kPause) return;
    m_last = now;
    std::string line = "scenepane: " + std::to_string(m_nFile) + " of " + std::to_string(m_nTotal) + ": " +
                       ProgramOptions::TerminalText(file);
    if (!m_bIsTerminal) {
        std::fprintf(m_err, "%s\n", line.c_str());
        return;
    }
    line.resize(std::min(line.size(), Columns(m_err) - 1));
    std::fprintf(m_err, "\r%s\033[K", line.c_str());
    std::fflush(m_err);
    m_bIsShown = true;
}

void ProgressLine::Erase() {
    if (!m_bIsShown) return;
    std::fputs("\r\033[K", m_err);
    std::fflush(m_err);
    m_bIsShown = false;
}

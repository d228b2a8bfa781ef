// Which file a run without a window reads, on standard error.
#pragma once
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <string>

#include "CommandLine.h"

/// On a terminal one line that is written over, and erased before anything else is printed; elsewhere a line for each
/// file. Prints nothing where standard error is no terminal unless the options ask for it.
class ProgressLine {
public:
    /// @param total  number of files
    ProgressLine(const HostOptions& options, std::size_t total, std::FILE* err);
    ~ProgressLine() { Erase(); }
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    /// A file is read from here on. On a terminal at most ten times a second, and the first one always.
    void Show(const std::string& file);
    void Erase();

private:
    std::FILE* const m_err;
    const std::size_t m_nTotal;
    bool m_bIsOn = false, m_bIsTerminal = false;
    bool m_bIsShown = false;
    std::size_t m_nFile = 0;
    std::chrono::steady_clock::time_point m_last{};
};

// Progress of a reader to its caller, who can cancel it.
#pragma once
#include <algorithm>
#include <cstdint>
#include <functional>
#include <utility>

#include "io/ByteInput.h"

/// Calls the caller's function with rising values, every hundredth of the file or every 16 MB, whichever is less.
class ReadProgress {
public:
    /// @param report  receives 0 to 1 and returns false to cancel; may be empty
    /// @param bytes   size of the file
    ReadProgress(std::function<bool(double)> report, std::uint64_t bytes)
        : m_report(std::move(report)),
          m_fStep(std::min(0.01, 16e6 / static_cast<double>(std::max<std::uint64_t>(bytes, 1)))) {}

    /// @param part   how much of the work is done, 0 to 1
    /// @param share  of the whole work that the current pass over the file is
    /// @throws FileReadError "cancelled"
    void Report(double part, double share = 1) {
        if (part < m_fLast + m_fStep * share || part >= 1) return;
        Call(part);
    }
    /// Reports 1, as the last call.
    void Finish() { Call(1); }

private:
    void Call(double part) {
        m_fLast = part;
        if (m_report && !m_report(part)) throw FileReadError("cancelled");
    }

    std::function<bool(double)> m_report;
    double m_fStep;
    double m_fLast = 0;
};

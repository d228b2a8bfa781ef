// Arithmetic as the standard has it, whatever the host has set.
#pragma once
#include <cfenv>

namespace KvComponents {

/// For its lifetime, on this thread: rounding to nearest, denormal numbers kept. What one process packs by predictions,
/// another must be able to predict.
class DefaultFloats {
public:
    DefaultFloats() {
        std::fegetenv(&m_before);
        std::fesetenv(FE_DFL_ENV);
    }
    ~DefaultFloats() { std::fesetenv(&m_before); }
    DefaultFloats(const DefaultFloats&) = delete;
    DefaultFloats& operator=(const DefaultFloats&) = delete;

private:
    std::fenv_t m_before{};
};

}  // namespace KvComponents

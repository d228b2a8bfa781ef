// The default floating-point environment, whatever the host program has set.
#pragma once
#include <cfenv>

namespace KvComponents {

/// For its lifetime, on this thread: rounding to nearest, denormal numbers not flushed to zero. Results must not depend
/// on the host; an hps decoder must compute the same predictions as the encoder, which may have been another process
/// with other settings.
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

// A process locale with a decimal comma, for tests that numbers do not depend on the locale.
#pragma once
#include <clocale>
#include <cstdlib>
#include <string>

#include "support/ScratchFolder.h"

/// Sets the locale of the process during its lifetime. The locale is made by localedef, in a scratch folder.
class CommaLocale {
public:
    CommaLocale() {
        const std::string make = "localedef -i de_DE -f UTF-8 " + (m_folder / "de_DE.UTF-8") + " >/dev/null 2>&1";
        m_bSet = std::system(make.c_str()) == 0 && setenv("LOCPATH", (m_folder / "").c_str(), 1) == 0 &&
                 std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
    }
    ~CommaLocale() {
        std::setlocale(LC_ALL, "C");
        unsetenv("LOCPATH");
    }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

    /// False on a machine that cannot make a locale: localedef or its sources are missing.
    [[nodiscard]] bool IsSet() const { return m_bSet && *std::localeconv()->decimal_point == ','; }

private:
    ScratchFolder m_folder;
    bool m_bSet = false;
};

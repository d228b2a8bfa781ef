// A process locale whose decimal separator is a comma, for tests that no number depends on it.
#pragma once
#include <clocale>
#include <cstdlib>
#include <string>

#include "support/ScratchFolder.h"

/// Sets the locale of the process while it lives. A machine without such a locale has one made by localedef.
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

    /// False on a machine without the sources of locales.
    [[nodiscard]] bool IsSet() const { return m_bSet && *std::localeconv()->decimal_point == ','; }

private:
    ScratchFolder m_folder;
    bool m_bSet = false;
};

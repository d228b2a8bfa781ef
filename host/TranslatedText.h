// A line of the message table for the window.
#pragma once
#include <QString>
#include <string>

#include "MessageTable.h"

/// TranslatedWords() as Qt's text.
[[nodiscard]] inline QString TranslatedText(const std::string& line) {
    return QString::fromStdString(TranslatedWords(line));
}

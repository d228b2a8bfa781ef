// What the readers and writers of JSON files share. Failures are thrown as std::runtime_error with one line of text in
// English: first the place, then what is wrong there.
#pragma once
#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <cstddef>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "JsonText.h"

/// Calls @p work; the reasons of its failures begin with the place.
template <class Work>
void At(const std::string& place, const Work& work) {
    try {
        work();
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(place + ": " + error.what());
    }
}

/// Calls @p read with the value of a key, or not at all when the key is neither there nor needed.
template <class Read>
void ReadKey(const QJsonObject& object, const char* key, bool isNeeded, const Read& read) {
    At(std::string("key \"").append(key).append("\""), [&] {
        const QJsonValue value = object[QLatin1String(key)];
        if (!value.isUndefined())
            read(value);
        else if (isNeeded)
            throw std::runtime_error("is missing");
    });
}

[[nodiscard]] double ToNumber(const QJsonValue& value);
/// A number within the range of floats.
[[nodiscard]] float ToFloat(const QJsonValue& value);
/// In UTF-8, or a file name in bytes as JsonString() writes it.
[[nodiscard]] std::string ToText(const QJsonValue& value);
[[nodiscard]] QJsonArray ToArray(const QJsonValue& value);

/// The object that a text holds. A text that is not JSON is refused with its line.
/// @param kind  what the file should be, such as "needles"
[[nodiscard]] QJsonObject ParseJsonObject(std::string_view text, const char* kind);

/// The whole file, unless it is larger than @p maxSize bytes. @param path, kind  in bytes; as above
[[nodiscard]] std::string ReadJsonFile(const std::string& path, std::size_t maxSize, const char* kind);

/// Replaces a file as a whole or not at all.
/// @param path      in bytes
/// @param makeText  returns the content; what it throws is the reason that nothing is written
/// @param reason    receives why nothing was written; unchanged after a success
[[nodiscard]] bool WriteJsonFile(const std::string& path, const std::function<std::string()>& makeText,
                                 std::string* reason);

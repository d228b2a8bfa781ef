// Reading by Qt's parser, which refuses text that is not UTF-8 and limits the depth.
#include "JsonFile.h"

#include <QJsonDocument>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <system_error>
#include <vector>

#include "KV_ScenePane/PathText.h"
#include "SceneFile.h"
#include "files/AtomicFile.h"
#include "files/RegularFile.h"

namespace {

/// Code points of UTF-16; a lone surrogate stays one, which QString's own conversions replace.
std::wstring WideText(const QString& text) {
    std::wstring wide;
    wide.reserve(static_cast<std::size_t>(text.size()));
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar unit = text[i];
        const bool isPair = unit.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        const char32_t point = isPair ? QChar::surrogateToUcs4(unit, text[i + 1]) : unit.unicode();
        wide += static_cast<wchar_t>(point);
        i += isPair ? 1 : 0;
    }
    return wide;
}

}  // namespace

double ToNumber(const QJsonValue& value) {
    if (!value.isDouble()) throw std::runtime_error("not a number");
    return value.toDouble();
}

float ToFloat(const QJsonValue& value) {
    const auto number = static_cast<float>(ToNumber(value));
    if (!std::isfinite(number)) throw std::runtime_error("the number is out of range");
    return number;
}

std::string ToText(const QJsonValue& value) {
    if (!value.isString()) throw std::runtime_error("not a text");
    return KV_ScenePane::PathBytes(WideText(value.toString()));
}

QJsonArray ToArray(const QJsonValue& value) {
    if (!value.isArray()) throw std::runtime_error("not an array");
    return value.toArray();
}

QJsonObject ParseJsonObject(std::string_view text, const char* kind) {
    const QByteArray bytes = QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size()));
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (error.error != QJsonParseError::NoError) {
        const auto line = 1 + bytes.first(std::min<qsizetype>(error.offset, bytes.size())).count('\n');
        throw std::runtime_error("line " + std::to_string(line) + ": " + error.errorString().toStdString());
    }
    if (!document.isObject()) throw std::runtime_error(std::string("not a file of ") + kind);
    return document.object();
}

std::string ReadJsonFile(const std::string& path, std::size_t maxSize, const char* kind) {
    const FileStorage::RegularFile file(path);
    if (file.Size() > maxSize) throw std::runtime_error(std::string("the file is too large for a file of ") + kind);
    const std::vector<std::byte> bytes = file.ReadWhole();
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

bool WriteJsonFile(const std::string& path, const std::function<std::string()>& makeText, std::string* reason) {
    try {
        const std::string json = makeText();
        FileStorage::AtomicFile file(path);
        file.WriteAt(0, json.data(), json.size());
        file.Commit();
        return true;
    } catch (const std::system_error& error) {
        // Folder or file: the error number alone does not say which of them is the cause.
        const std::string refusal = WriteRefusal(path);
        *reason = refusal.empty() ? strerrordesc_np(error.code().value()) : refusal;
    } catch (const std::runtime_error& error) {
        *reason = error.what();
    }
    return false;
}

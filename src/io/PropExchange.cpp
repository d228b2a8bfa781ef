// Stores of the persisted properties as lines of text and as bytes with a checksum. Numbers are read and written
// without the locale.
#include "io/PropExchange.h"

#include <array>
#include <bit>
#include <charconv>
#include <cstring>
#include <limits>
#include <map>

#include "KV_ScenePane/Modes.h"
#include "files/SectionFile.h"

namespace {

static_assert(std::endian::native == std::endian::little, "numbers are copied between store and memory unchanged");

constexpr std::string_view kTextStart = "KV_ScenePane properties ";
/// The first byte is no text; line ends and end-of-text byte detect a transfer that converted the store as text.
constexpr std::string_view kMagic = "\x8bKVP\r\n\x1a\n";
constexpr std::size_t kLongestName = 64;

[[noreturn]] void ThrowDamaged(const std::string& why) {
    throw PropertyStoreError(std::string("The store of properties is damaged: ").append(why));
}

std::string InLine(std::size_t line, std::string_view rest) {
    return std::string("line ").append(std::to_string(line)).append(rest);
}

std::string TextOf(PropVersion version) {
    return std::to_string(version.major).append(".").append(std::to_string(version.minor));
}

void CheckMajor(PropVersion stored, PropVersion current) {
    if (stored.major == current.major) return;
    if (stored.major < current.major) ThrowDamaged(std::string("there is no version ").append(TextOf(stored)));
    throw PropertyStoreError(
        std::string("The properties were stored by a newer version of the viewer: their version is ")
            .append(TextOf(stored))
            .append(", and this one reads ")
            .append(TextOf(current)));
}

// ---- text

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool IsName(std::string_view text) {
    constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_";
    return !text.empty() && text.size() <= kLongestName && text.find_first_not_of(kLetters) == std::string_view::npos;
}

/// The whole text as a decimal number; false for anything else and beyond the type.
template <typename Number>
bool ParseNumber(std::string_view text, Number* number) {
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, *number);
    return error == std::errc() && stop == end;
}

class TextWriter final : public PropWriter {
public:
    void ExchangeVersion(PropVersion current) override { m_sStore.append(kTextStart).append(TextOf(current)) += '\n'; }
    void ExchangeBool(std::string_view name, bool& value, bool) override { Line(name, value ? 1 : 0); }
    void ExchangeShort(std::string_view name, std::int16_t& value, std::int16_t) override { Line(name, value); }
    void Finish() override {}

private:
    void Line(std::string_view name, int value) {
        m_sStore.append(name).append("=").append(std::to_string(value)) += '\n';
    }
};

class TextReader final : public PropExchange {
public:
    explicit TextReader(std::string_view store) : m_rest(store.substr(kTextStart.size())) {}

    void ExchangeVersion(PropVersion current) override {
        const std::string_view text = TakeLine();
        const std::size_t dot = text.find('.');
        PropVersion stored;
        if (dot == std::string_view::npos || !ParseNumber(text.substr(0, dot), &stored.major) ||
            !ParseNumber(text.substr(dot + 1), &stored.minor))
            ThrowDamaged("its first line has no version");
        CheckMajor(stored, current);
        m_bNewer = stored.minor > current.minor;
        while (!m_rest.empty())
            if (const std::string_view line = TakeLine(); !line.empty()) Keep(line);
    }

    void ExchangeBool(std::string_view name, bool& value, bool start) override {
        value = TakeNumber(name, 0, 1, start ? 1 : 0) != 0;
    }
    void ExchangeShort(std::string_view name, std::int16_t& value, std::int16_t start) override {
        using Limits = std::numeric_limits<std::int16_t>;
        value = static_cast<std::int16_t>(TakeNumber(name, Limits::min(), Limits::max(), start));
    }

    void Finish() override {
        if (m_values.empty() || m_bNewer) return;
        const auto& [name, value] = *m_values.begin();
        ThrowDamaged(InLine(value.line, ": there is no property ").append(name));
    }

private:
    struct Value {
        std::string_view text;
        std::size_t line = 0;  ///< from 1
    };

    /// The next line without the blanks around it. Every line ends with a line feed: a store that was cut off inside a
    /// number would be read as another number.
    std::string_view TakeLine() {
        const std::size_t end = m_rest.find('\n');
        if (end == std::string_view::npos) ThrowDamaged("its last line does not end with a line feed");
        const std::string_view line = m_rest.substr(0, end);
        m_rest.remove_prefix(end + 1);
        ++m_line;
        return Trimmed(line);
    }

    void Keep(std::string_view line) {
        const std::size_t equals = line.find('=');
        const std::string_view name = Trimmed(line.substr(0, equals));
        if (equals == std::string_view::npos || !IsName(name)) ThrowDamaged(InLine(m_line, " is not NAME=VALUE"));
        const bool isFirst = m_values.try_emplace(name, Value{Trimmed(line.substr(equals + 1)), m_line}).second;
        if (!isFirst) ThrowDamaged(InLine(m_line, ": another line has ").append(name));
    }

    std::int32_t TakeNumber(std::string_view name, std::int32_t smallest, std::int32_t largest, std::int32_t start) {
        const auto found = m_values.find(name);
        if (found == m_values.end()) return start;
        const Value value = found->second;
        m_values.erase(found);
        std::int32_t number = 0;
        if (!ParseNumber(value.text, &number) || number < smallest || number > largest)
            ThrowDamaged(InLine(value.line, ": ")
                             .append(name)
                             .append(" is not a number from ")
                             .append(std::to_string(smallest))
                             .append(" to ")
                             .append(std::to_string(largest)));
        return number;
    }

    std::string_view m_rest;
    std::size_t m_line = 0;                      ///< number of the last line that was read
    bool m_bNewer = false;                       ///< of a newer minor version
    std::map<std::string_view, Value> m_values;  ///< of the properties that were not exchanged yet
};

// ---- bytes

class BinaryWriter final : public PropWriter {
public:
    void ExchangeVersion(PropVersion current) override {
        m_sStore += kMagic;
        Add(current.major);
        Add(current.minor);
    }
    void ExchangeBool(std::string_view, bool& value, bool) override { Add(static_cast<std::uint8_t>(value ? 1 : 0)); }
    void ExchangeShort(std::string_view, std::int16_t& value, std::int16_t) override { Add(value); }
    void Finish() override { Add(FileStorage::Checksum(m_sStore.data(), m_sStore.size())); }

private:
    template <typename Number>
    void Add(Number number) {
        const auto bytes = std::bit_cast<std::array<char, sizeof number>>(number);
        m_sStore.append(bytes.data(), bytes.size());
    }
};

class BinaryReader final : public PropExchange {
public:
    explicit BinaryReader(std::string_view store) : m_rest(store) {}

    void ExchangeVersion(PropVersion current) override {
        PropVersion stored;
        if (m_rest.size() < kMagic.size() + sizeof stored + FileStorage::kChecksumSize) ThrowDamaged("it is cut short");
        const std::string_view covered = m_rest.substr(0, m_rest.size() - FileStorage::kChecksumSize);
        std::uint64_t checksum = 0;
        std::memcpy(&checksum, covered.data() + covered.size(), sizeof checksum);
        if (checksum != FileStorage::Checksum(covered.data(), covered.size())) ThrowDamaged("its checksum is wrong");
        m_rest = covered.substr(kMagic.size());
        Take(&stored.major);
        Take(&stored.minor);
        CheckMajor(stored, current);
        m_bNewer = stored.minor > current.minor;
        m_bOlder = stored.minor < current.minor;
    }

    void ExchangeBool(std::string_view name, bool& value, bool start) override {
        auto byte = static_cast<std::uint8_t>(start ? 1 : 0);
        TakeProperty(name, &byte);
        if (byte > 1) ThrowDamaged(std::string(name).append(" is neither 0 nor 1"));
        value = byte == 1;
    }
    void ExchangeShort(std::string_view name, std::int16_t& value, std::int16_t start) override {
        value = start;
        TakeProperty(name, &value);
    }

    void Finish() override {
        if (!m_rest.empty() && !m_bNewer) ThrowDamaged("there is more than its version has");
    }

private:
    template <typename Number>
    void Take(Number* number) {
        std::memcpy(number, m_rest.data(), sizeof *number);
        m_rest.remove_prefix(sizeof *number);
    }

    /// An older minor version ends before the properties that were added since.
    template <typename Number>
    void TakeProperty(std::string_view name, Number* number) {
        if (m_rest.empty() && m_bOlder) return;
        if (m_rest.size() < sizeof *number) ThrowDamaged(std::string("it ends before ").append(name));
        Take(number);
    }

    std::string_view m_rest;                  ///< without the checksum once that was compared
    bool m_bNewer = false, m_bOlder = false;  ///< of another minor version
};

}  // namespace

std::unique_ptr<PropWriter> NewPropertyStore(KV_ScenePane::PropertyFormat format) {
    if (format == KV_ScenePane::PropertyFormat::Binary) return std::make_unique<BinaryWriter>();
    return std::make_unique<TextWriter>();
}

std::unique_ptr<PropExchange> OpenPropertyStore(std::string_view store) {
    if (store.size() > kMaxPropertyStore) throw PropertyStoreError("The store of properties is larger than 64 KiB");
    if (store.starts_with(kMagic)) return std::make_unique<BinaryReader>(store);
    if (store.starts_with(kTextStart)) return std::make_unique<TextReader>(store);
    throw PropertyStoreError("There is no store of properties in this text or file");
}

void ExchangeProperties(PropExchange& exchange, PersistedProperties& properties) {
    exchange.ExchangeVersion({1, 0});
    // Between the version and these a base class would exchange its own properties; there are none.
    exchange.ExchangeBool("DrawMosaic", properties.drawMosaic, false);
    exchange.ExchangeShort("DrawMode", properties.drawMode, KV_ScenePane::DrawModeGouraud);
    exchange.ExchangeBool("MoveReduced", properties.moveReduced, false);
    exchange.Finish();
}

// The log file, the buffer of each thread, and the header of the records.
#include "log/Log.h"

#include <time.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <locale>
#include <mutex>
#include <streambuf>
#include <string>

#include "base/TempFolder.h"

namespace {

/// A clock that is never set back, milliseconds.
std::int64_t TickCount() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
}

std::string NowTime() {
    static const std::int64_t firstTick = TickCount();
    return LogTime(std::time(nullptr), TickCount() - firstTick);
}

/// The file of all threads, opened by the first record in append mode: several processes may write to it.
struct LogFile {
    std::mutex lock;  ///< guards the members below
    std::ofstream file;
    const void* lineOwner = nullptr;  ///< the buffer that has written the start of a line and not its end

    LogFile() {
        file.imbue(std::locale::classic());  // before the file is open: the bytes are those of the texts
        file.open(TempFolder() + "/viewer.log", std::ios::out | std::ios::app);
    }

    // Never destroyed: a thread may still log while static objects are destroyed. Every write is flushed.
    static LogFile& Instance() {
        static LogFile* const instance = new LogFile;
        return *instance;
    }
};

/// Collects what one thread writes, and writes it to the file as a whole when the thread flushes.
class RecordBuffer final : public std::streambuf {
public:
    RecordBuffer() = default;
    // A record without an end is written, too. Its line belongs to nobody then, also not to a buffer at this address.
    ~RecordBuffer() override {
        RecordBuffer::sync();
        LogFile& log = LogFile::Instance();
        const std::lock_guard lock(log.lock);
        if (log.lineOwner == this) log.lineOwner = &log;
    }
    RecordBuffer(const RecordBuffer&) = delete;
    RecordBuffer& operator=(const RecordBuffer&) = delete;

protected:
    int_type overflow(int_type c) override {
        if (c != traits_type::eof()) m_sText += traits_type::to_char_type(c);
        return traits_type::not_eof(c);
    }
    std::streamsize xsputn(const char* text, std::streamsize size) override {
        m_sText.append(text, static_cast<std::size_t>(size));
        return size;
    }
    // Another thread may have flushed a piece without a line end: its line stays as it is, this text starts a new one.
    int sync() override {
        if (m_sText.empty()) return 0;
        LogFile& log = LogFile::Instance();
        const std::lock_guard lock(log.lock);
        if (log.lineOwner != nullptr && log.lineOwner != this) log.file << '\n';
        log.file << m_sText << std::flush;
        log.lineOwner = m_sText.back() == '\n' ? nullptr : this;
        m_sText.clear();
        return log.file ? 0 : -1;
    }

private:
    std::string m_sText;
};

/// The stream that a thread gets.
struct RecordStream {
    RecordBuffer buffer;
    std::ostream stream{&buffer};
    RecordStream() { stream.imbue(std::locale::classic()); }  // independent of the locale that the host sets
};

std::ostream& ThreadStream() {
    thread_local RecordStream record;
    return record.stream;
}

}  // namespace

std::ostream& Log(LogLevel level) {
    static constexpr std::array kLevelWords{"ERROR", "WARNING", "INFO", "DEBUG"};
    std::ostream& stream = ThreadStream();
    stream.clear();  // a record that could not be written does not silence the next
    return stream << "[" << NowTime() << "] <" << kLevelWords[static_cast<std::size_t>(level)] << ">: ";
}

std::string LogTime(std::time_t now, std::int64_t milliseconds) {
    std::tm local{};
    if (localtime_r(&now, &local) == nullptr) return "Error in NowTime()";
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%02d:%02d:%02d.%03d", local.tm_hour, local.tm_min, local.tm_sec,
                  static_cast<int>(milliseconds % 1000));
    return text.data();
}

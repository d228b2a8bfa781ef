// scenepane-read: reads one foreign mesh file for scenepane and writes what it found into a file that scenepane has
// opened. A process of its own, so that a bad file ends nothing else.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <charconv>
#include <cstdio>
#include <cstring>
#include <exception>
#include <new>
#include <optional>
#include <string>
#include <string_view>

#include "ForeignFile.h"
#include "ReaderProgram.h"
#include "Sandbox.h"

namespace {

constexpr int kExitWrongUsage = 2;

std::optional<std::uint64_t> Number(std::string_view text) {
    std::uint64_t value = 0;
    const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && rest == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

bool IsWritable(int fd) {
    const int flags = fcntl(fd, F_GETFL);
    return flags >= 0 && (flags & O_ACCMODE) == O_RDWR;
}

ReaderResult Refusal(std::string reason) {
    ReaderResult result;
    result.text = reason.empty() ? "it cannot be read" : std::move(reason);
    return result;
}

/// @throws std::bad_alloc for a refusal that does not fit into memory either
ReaderResult Read(const std::string& file) {
    try {
        return ReadForeignFile(file);
    } catch (const std::bad_alloc&) {
        return Refusal("there is not enough memory");
    } catch (const std::length_error&) {  // of a container: as without memory
        return Refusal("there is not enough memory");
    } catch (const std::exception& error) {
        return Refusal(error.what());
    }
}

}  // namespace

int main(int argc, char** argv) {
    const auto megabytes = argc == 4 ? Number(argv[1]) : std::nullopt;
    const auto seconds = argc == 4 ? Number(argv[2]) : std::nullopt;
    if (!megabytes || !seconds || !IsWritable(kReaderResultFd)) {
        std::fprintf(stderr,
                     "Usage: scenepane-read MEGABYTES SECONDS FILE %d<>RESULT\n"
                     "scenepane runs it to read foreign mesh files; it is of no use by itself.\n",
                     kReaderResultFd);
        return kExitWrongUsage;
    }
    try {
        SetLimits({*megabytes << 20, *seconds});
        EnterSandbox();
        WriteReaderResult(kReaderResultFd, Read(argv[3]));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "scenepane-read: %s\n", error.what());
        _exit(1);
    }
    _exit(0);  // without destructors of the library, which could crash after the result
}

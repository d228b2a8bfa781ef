// Replaces a file again and again until a signal ends it, for tests/host/InterruptedWriteTest.cpp.
//   kv_interrupted_writer TARGET nameless|named
// The content is kInterruptedBytes times one of two letters, in turn. A line on standard output says that it has begun.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <string_view>

#include "InterruptSignals.h"
#include "files/AtomicFile.h"
#include "host/InterruptedWriter.h"

namespace {

/// Without the waits for the disk, so that most signals arrive during the other calls.
class QuickCalls : public FileStorage::FileCalls {
public:
    explicit QuickCalls(bool hasNameless) : m_hasNameless(hasNameless) {}
    int Open(const char* path, int flags, mode_t mode) override {
        if (m_hasNameless || (flags & O_TMPFILE) != O_TMPFILE) return FileCalls::Open(path, flags, mode);
        errno = EOPNOTSUPP;
        return -1;
    }
    int Sync(int) override { return 0; }

private:
    bool m_hasNameless;
};

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    HandleInterruptSignals();
    QuickCalls calls(argv[2] == std::string_view("nameless"));
    if (::write(STDOUT_FILENO, "\n", 1) != 1) return 1;
    for (char letter = 'a';; letter = letter == 'a' ? 'b' : 'a') {
        const std::string block(kInterruptedBytes / 16, letter);
        FileStorage::AtomicFile file(argv[1], calls);
        for (std::size_t i = 0; i < 16; ++i) file.WriteAt(i * block.size(), block.data(), block.size());
        file.Commit();
    }
}

// Readers of points on texts in memory.
#pragma once
#include <cstring>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "KV_ScenePane/PointFiles.h"
#include "io/ByteInput.h"
#include "io/ReadProgress.h"

using PointReader = KV_ScenePane::PointCloud (*)(ByteInput& input, ReadProgress& progress);

inline KV_ScenePane::PointCloud ReadBytesAsPoints(PointReader reader, const std::string& bytes,
                                                  const std::function<bool(double)>& report = {}) {
    MemoryInput input(std::as_bytes(std::span(bytes)));
    ReadProgress progress(report, bytes.size());
    return reader(input, progress);
}

/// The reason of a refusal; "accepted" when there is none.
inline std::string PointRefusal(PointReader reader, const std::string& bytes) {
    try {
        (void)ReadBytesAsPoints(reader, bytes);
        return "accepted";
    } catch (const FileReadError& error) {
        return error.what();
    }
}

/// A file that promises more bytes than it has, as one that another process shortens.
class ShortenedInput final : public ByteInput {
public:
    ShortenedInput(const std::string& bytes, std::uint64_t promised)
        : m_input(std::as_bytes(std::span(bytes))), m_uPromised(promised) {}
    [[nodiscard]] std::uint64_t Size() const override { return m_uPromised; }
    std::size_t ReadAt(std::uint64_t offset, void* to, std::size_t size) const override {
        return m_input.ReadAt(offset, to, size);
    }

private:
    MemoryInput m_input;
    std::uint64_t m_uPromised;
};

/// The bytes of values, one after the other.
template <class... T>
std::string Raw(const T&... values) {
    std::string bytes;
    (bytes.append(reinterpret_cast<const char*>(&values), sizeof values), ...);
    return bytes;
}

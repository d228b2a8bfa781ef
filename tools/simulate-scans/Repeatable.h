// Random numbers and sines with the same bits on every machine. Those of the standard libraries differ between versions
// and processors, but one seed must always give the same files.
#pragma once
#include <cstdint>

namespace simulate {

/// Sine and cosine of an angle in full turns; within 1e-14 of the true value for angles up to a few hundred turns.
[[nodiscard]] double SinTurns(double turns);
[[nodiscard]] double CosTurns(double turns);

/// A stream of random numbers (splitmix64). Its start is cheap, so that each pixel has its own stream and the result
/// does not depend on the order in which threads process the pixels.
class RandomStream {
public:
    /// The stream of one pixel of one scan.
    RandomStream(std::uint64_t seed, std::uint64_t scan, std::uint64_t pixel)
        : m_nState(Mix(Mix(Mix(seed) + scan) + pixel)) {}

    /// 64 uniform bits.
    std::uint64_t Next() { return Mix(m_nState += 0x9E3779B97F4A7C15u); }
    /// Uniform in [0, 1).
    float Uniform() { return static_cast<float>(Next() >> 40) * 0x1p-24f; }
    /// Approximately normal with mean 0 and standard deviation 1: the sum of twelve uniform numbers minus 6, which is
    /// never outside -6 to 6.
    float Gaussian() {
        std::uint32_t sum = 0;
        for (int word = 0; word < 3; ++word) {
            const std::uint64_t bits = Next();
            for (int shift = 0; shift < 64; shift += 16) sum += static_cast<std::uint32_t>(bits >> shift) & 0xFFFFu;
        }
        return (static_cast<float>(sum) + 6.0f) * 0x1p-16f - 6.0f;
    }

private:
    /// The output function of splitmix64, a bijection that makes neighbouring numbers independent.
    static std::uint64_t Mix(std::uint64_t z) {
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }
    std::uint64_t m_nState;
};

}  // namespace simulate

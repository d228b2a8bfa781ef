// Random numbers that are the same on every machine for the same seed, and arguments that no host should pass.
#pragma once
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <limits>

class Random {
public:
    explicit Random(std::uint64_t seed) : m_state(seed) {}

    /// The generator splitmix64.
    std::uint64_t Next() {
        m_state += 0x9E3779B97F4A7C15u;
        std::uint64_t z = m_state;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }
    /// In [0, 1).
    double Fraction() { return static_cast<double>(Next() >> 11) * 0x1p-53; }
    bool Chance(double probability) { return Fraction() < probability; }
    /// From first to last, both included.
    std::int32_t Int(std::int32_t first, std::int32_t last) {
        const auto count = static_cast<std::uint64_t>(std::int64_t{last} - first + 1);
        return static_cast<std::int32_t>(first + static_cast<std::int64_t>(Next() % count));
    }
    std::int16_t Short(std::int16_t first, std::int16_t last) { return static_cast<std::int16_t>(Int(first, last)); }
    std::size_t Index(std::size_t count) { return static_cast<std::size_t>(Next() % count); }
    float Float(float first, float last) { return first + static_cast<float>(Fraction()) * (last - first); }
    template <typename T>
    T OneOf(std::initializer_list<T> values) {
        return values.begin()[Index(values.size())];
    }

    /// Any number, often one at a limit.
    std::int32_t WildInt() {
        using Limits = std::numeric_limits<std::int32_t>;
        if (Chance(0.3)) return static_cast<std::int32_t>(Next());
        return OneOf<std::int32_t>({Limits::min(), Limits::max(), -1, 0, 1, 2, 255, 256, 32767, 32768, 65536, -32769});
    }
    std::int16_t WildShort() {
        using Limits = std::numeric_limits<std::int16_t>;
        if (Chance(0.3)) return static_cast<std::int16_t>(Next());
        return OneOf<std::int16_t>({Limits::min(), Limits::max(), -1, 0, 1, 2, 3, 255, 256});
    }
    float WildFloat() {
        using Limits = std::numeric_limits<float>;
        if (Chance(0.3)) return Float(-1000.0f, 1000.0f);
        return OneOf<float>({Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), Limits::max(),
                             Limits::lowest(), Limits::denorm_min(), 0.0f, -0.0f, 1.0f, -1.0f, 1e20f, -1e20f, 1e-20f});
    }

private:
    std::uint64_t m_state;
};

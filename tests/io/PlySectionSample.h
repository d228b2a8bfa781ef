// Ply files in memory for the tests of their sections.
#pragma once
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "io/CPLYFile.h"

inline std::string AsciiFile(const std::string& body, const std::string& data) {
    return "ply\nformat ascii 1.0\n" + body + "\nend_header\n" + data;
}

inline std::string BinaryFile(const std::string& body, const std::string& data) {
    return "ply\nformat binary_little_endian 1.0\n" + body + "\nend_header\n" + data;
}

/// The bytes of a value.
template <class Value>
std::string Raw(Value value) {
    std::string bytes(sizeof value, '\0');
    std::memcpy(bytes.data(), &value, sizeof value);
    return bytes;
}

/// A file that has been read.
class PlySample {
public:
    explicit PlySample(const std::string& bytes) {
        std::istringstream stream(bytes);
        m_file.Read(stream, false);
    }
    CPLYFile& File() { return m_file; }
    DataSection& Data() { return *m_file.m_pDataSection; }

private:
    CPLYFile m_file;
};

/// Runs an action that must fail, and checks reason and position.
template <class Action>
void ExpectPlyError(Action action, const std::string& message, std::int64_t position) {
    try {
        action();
        ADD_FAILURE() << "no error; expected: " << message;
    } catch (const CPLYFileError& error) {
        EXPECT_EQ(error.what(), message);
        EXPECT_EQ(error.GetPosition(), position);
    }
}

using Ints = std::vector<int>;
using Floats = std::vector<float>;
using Starts = std::vector<std::int64_t>;

/// All values that ForEachInt() passes to its callback; checks that the index counts up.
inline Ints AllInts(DataSection& data, std::string_view element, std::string_view property) {
    Ints values;
    const auto append = [](std::int64_t index, int value, void* user) {
        auto& list = *static_cast<Ints*>(user);
        EXPECT_EQ(index, static_cast<std::int64_t>(list.size()));
        list.push_back(value);
        return true;
    };
    data.ForEachInt(element, property, append, &values);
    return values;
}

inline Floats AllFloats(DataSection& data, std::string_view element, std::string_view property) {
    Floats values;
    const auto append = [](std::int64_t, float value, void* user) {
        static_cast<Floats*>(user)->push_back(value);
        return true;
    };
    data.ForEachFloat(element, property, append, &values);
    return values;
}

inline std::vector<Ints> AllIntLists(DataSection& data, std::string_view element, std::string_view property) {
    std::vector<Ints> values;
    const auto append = [](std::int64_t, const Ints& value, void* user) {
        static_cast<std::vector<Ints>*>(user)->push_back(value);
        return true;
    };
    data.ForEachIntList(element, property, append, &values);
    return values;
}

inline std::vector<Floats> AllFloatLists(DataSection& data, std::string_view element, std::string_view property) {
    std::vector<Floats> values;
    const auto append = [](std::int64_t, const Floats& value, void* user) {
        static_cast<std::vector<Floats>*>(user)->push_back(value);
        return true;
    };
    data.ForEachFloatList(element, property, append, &values);
    return values;
}

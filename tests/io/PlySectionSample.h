// Ply files in memory for the tests of their sections.
#pragma once
#include <gtest/gtest.h>

#include <cstring>
#include <sstream>
#include <string>

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

/// A file that has been read, with its data at hand.
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

/// Runs something that must fail.
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

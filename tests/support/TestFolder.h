// A folder of the test process, also seen by the children of its death tests; the log of the process is in it.
#pragma once
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

/// Made by the first call, and then also $TMPDIR: to be called before the first record is logged.
inline const std::string& TestFolder() {
    static const std::string folder = [] {
        if (const char* const inherited = std::getenv("KV_TEST_FOLDER")) return std::string(inherited);
        std::string name = (std::filesystem::temp_directory_path() / "kv_test_XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) std::abort();
        setenv("KV_TEST_FOLDER", name.c_str(), 1);
        setenv("TMPDIR", name.c_str(), 1);
        static const struct Remover {
            std::string name;
            ~Remover() {
                std::error_code ignored;
                std::filesystem::remove_all(name, ignored);
            }
        } remover{name};
        return name;
    }();
    return folder;
}

/// The content of the log of this process.
inline std::string ReadLog() {
    std::ifstream file(TestFolder() + "/viewer.log");
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// The exported symbols of the shared library.
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <set>
#include <sstream>
#include <string>

namespace {

/// What @p command writes to its standard output.
std::string OutputOf(const std::string& command) {
    struct Close {
        void operator()(FILE* pipe) const { EXPECT_EQ(pclose(pipe), 0); }
    };
    const std::unique_ptr<FILE, Close> pipe(popen(command.c_str(), "r"));
    std::string text;
    char part[4096];
    while (fgets(part, sizeof part, pipe.get()) != nullptr) text += part;
    return text;
}

TEST(TheLibrary, ExportsOnlyTheFactoryTheDebugOutputSinkTheReaderOfPointsAndTheTestsOfCutMasks) {
    std::istringstream lines(OutputOf("nm -D -C --defined-only --format=just-symbols '" KV_LIBRARY_FILE "'"));
    std::set<std::string> functions;
    for (std::string line; std::getline(lines, line);) functions.insert(line.substr(0, line.find('(')));
    EXPECT_EQ(functions, (std::set<std::string>{"ACAD::CutMask::InvalidateVertices", "ACAD::CutMask::MarkVertices",
                                                "KV_ScenePane::CreateScenePane", "KV_ScenePane::ReadPointFile",
                                                "KV_ScenePane::SetDebugOutputSink"}));
}

}  // namespace

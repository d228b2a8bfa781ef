// The docstrings and stubs of the Python package: they say what Python does, in Python's words.
#include "generator/PythonText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>

#include "generator/WritePython.h"

namespace bindings {
namespace {

const Surface& TheSurface() {
    static const Surface surface = JoinSurface(ReadHeaders(KV_SOURCE_DIR));
    return surface;
}

const Member& Method(const std::string& name) { return *std::ranges::find(TheSurface().methods, name, &Member::name); }

std::string Doc(const std::string& name) { return MethodDocString(Method(name)); }

/// The docstring on one line, so that a sentence can be found wherever its lines are broken.
std::string OneLine(const std::string& text) {
    std::string line;
    for (const char c : text) {
        const bool isBlank = std::isspace(static_cast<unsigned char>(c)) != 0;
        if (!isBlank || (!line.empty() && line.back() != ' ')) line.push_back(isBlank ? ' ' : c);
    }
    return line;
}

std::string Stub() { return OneLine(PythonFiles(TheSurface()).at("_surface.pyi")); }

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

TEST(PythonDocStrings, OfImportsNameTheirException) {
    for (const char* name :
         {"ImportMesh", "ImportScan", "ImportMeasurementFromMemory", "ImportMeshFromMemory", "ImportMeshedMeasurement"})
        EXPECT_TRUE(Has(OneLine(Doc(name)), "Raises: kv.ImportFailed: ")) << Doc(name);
    EXPECT_FALSE(Has(Doc("ImportMesh"), "throws the reason")) << Doc("ImportMesh");
    EXPECT_FALSE(Has(Doc("ImportMesh"), "unreadable ply file")) << Doc("ImportMesh");
    EXPECT_FALSE(Has(Doc("ImportScan"), "is reported in the debugger output")) << Doc("ImportScan");
    EXPECT_TRUE(Has(OneLine(Doc("ExportMesh")), "Raises: kv.Error: ")) << Doc("ExportMesh");
}

TEST(PythonDocStrings, HaveNoWordsOfCpp) {
    const std::string text = PythonFiles(TheSurface()).at("_surface.py");
    for (const char* word : {"throw", "hook", "showMessage", "showAbout", "std::", "kVariant", " null", "Null ",
                             "the host", "HasWindow()", "ACAD::", ".h)", "not checked", " pointer"})
        EXPECT_FALSE(Has(text, word)) << word << ": " << text.substr(text.find(word) - 200, 400);
    EXPECT_TRUE(Has(OneLine(Doc("SaveCuttingToPcms")), "Returns: True when there was at least one file to write."))
        << Doc("SaveCuttingToPcms");
}

TEST(PythonDocStrings, NameEveryArgumentThatMayBeLeftOut) {
    for (const Member& method : TheSurface().methods) {
        const std::string doc = OneLine(MethodDocString(method));
        for (const Argument& argument : method.arguments) {
            if (argument.output || !IsLength(method, argument.name)) continue;
            const std::size_t end = doc.find("taken from the array when left out");
            ASSERT_NE(end, std::string::npos) << method.name;
            EXPECT_TRUE(Has(doc.substr(0, end), argument.name)) << method.name << "." << argument.name << ": " << doc;
        }
    }
    EXPECT_TRUE(Has(Doc("AddOverlayData"), "width, height: taken from")) << Doc("AddOverlayData");
    EXPECT_TRUE(Has(Doc("ImportMeshFromMemory"), "numberOfVertices, numberOfTriangles: taken from"));
}

TEST(PythonDocStrings, SayThatNoOtherThreadMayWriteToAnArray) {
    EXPECT_TRUE(Has(OneLine(Doc("ImportMeshFromMemory")), "No other thread may write to the arrays during the call"));
    EXPECT_TRUE(Has(OneLine(ClassDocString(TheSurface())), "no other thread may write to them"));
}

TEST(PythonStubs, AllowNoneWhereAnArrayMayBeMissing) {
    const std::string stub = Stub();
    EXPECT_TRUE(Has(stub, "argbU8DataPtrHack: NDArray[np.uint8] | None,"));
    EXPECT_TRUE(Has(stub, "XYZs: NDArray[np.float32] | None)"));
    EXPECT_TRUE(Has(stub, "xyz: NDArray[np.float32] | None, colors: NDArray[np.float32] | None, alpha: float)"));
    EXPECT_TRUE(Has(stub, "filename: PathLike | None, color: int)"));
    EXPECT_TRUE(Has(stub, "vertices: NDArray[np.float32], triangles: NDArray[np.int32])"));
}

TEST(PythonStubs, RequireWhatFollowsALength) {
    const std::string stub = Stub();
    EXPECT_TRUE(Has(stub,
                    "@overload def ImportMeshFromMemory( self, numberOfVertices: int | None, numberOfTriangles: int | "
                    "None, vertices: NDArray[np.float32], triangles: NDArray[np.int32]) -> None: ... "
                    "@overload def ImportMeshFromMemory( self, numberOfVertices: int | None = ..., "
                    "numberOfTriangles: int | None = ..., *, vertices: NDArray[np.float32], "
                    "triangles: NDArray[np.int32]) -> None: ..."))
        << stub;
    std::string rest = stub;
    for (const char* allowed : {"int | None = ...,"})
        for (std::size_t at = rest.find(allowed); at != std::string::npos; at = rest.find(allowed))
            rest.erase(at, std::string(allowed).size());
    EXPECT_FALSE(Has(rest, "= ...")) << "only a length has a default";
}

TEST(PythonFiles, RefuseAPhraseThatNoTextHas) {
    EXPECT_NO_THROW((void)PythonFiles(TheSurface()));
    Surface surface = TheSurface();
    Member& about = *std::ranges::find(surface.methods, "AboutBox", &Member::name);
    ASSERT_EQ(about.throws, "what the hook throws");
    about.throws = "what the dialog throws";
    try {
        (void)PythonFiles(surface);
        FAIL() << "it was accepted";
    } catch (const SourceError& error) {
        EXPECT_STREQ(error.what(), "bindings/generator/PythonText.cpp: no text has \"what the hook throws\" any more");
    }
}

}  // namespace
}  // namespace bindings

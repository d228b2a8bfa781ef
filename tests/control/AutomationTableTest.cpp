// The automation table against the published declarations and against the abstract classes.
#include "control/AutomationTable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <sstream>
#include <string>

namespace {

struct Declaration {
    std::int32_t id;
    const char* text;
};

// clang-format off
const Declaration kMethods[] = {
    {4, "void SetSize(short sx, short sy)"},
    {5, "void ClearData()"},
    {6, "void ClearUndoStack()"},
    {7, "void SetLassoCuttingColors(long inside, float insideOpacity, long outside, float outsideOpacity)"},
    {8, "void DisplayClipPlanePartCloseToData()"},
    {9, "int FindNearestPickPointSphere(int sx, int sy)"},
    {10, "void RemovePickPointSphere(int id)"},
    {11, "void GetPickPointSphereCoords(int id, float* x, float* y, float* z)"},
    {12, "int GetNumberOfPickPointSpheres()"},
    {13, "void SetMaxNumberOfNeedles(int num)"},
    {14, "VARIANT_BOOL DeselectNeedle(int id)"},
    {15, "void DeselectAllNeedles()"},
    {16, "void SelectNeedle(int id)"},
    {17, "VARIANT_BOOL RecreateOpenglContext(int majorVersion, int minorVersion, int numberOfSamples)"},
    {18, "void SetPickMode(short mode)"},
    {19, "short GetPickMode()"},
    {20, "void SetCrossColor(long color)"},
    {21, "long GetCrossColor()"},
    {22, "VARIANT_BOOL GetViewDirection(float* px, float* py, float* pz, float* vx, float* vy, float* vz)"},
    {23, "short GetNumObjects()"},
    {24, "long GetObjectColor(short idx)"},
    {25, "void SetObjectColor(short idx, long color)"},
    {26, "void StartSegmentation(short mode)"},
    {27, "void GetMeshDataSize(short objIdx, long* numP, long* numT)"},
    {28, "void ClearPickPointSpheres()"},
    {29, "void MovePickPointSphere(int id, float x, float y, float z)"},
    {30, "int PerformUndo()"},
    {31, "void ImportMesh(BSTR path)"},
    {32, "void ExportMesh(short objIdx, BSTR path)"},
    {33, "void ImportScan(BSTR path, long color)"},
    {34, "void ShowLightingArrow(short show)"},
    {35, "void SetArrowColor(long color)"},
    {36, "void TracingMode(short on)"},
    {37, "void FlipMouseButtons(short flip)"},
    {38, "void SetRotationMode(short mode)"},
    {39, "void SetViewMode(short mode)"},
    {40, "void ResetSelection()"},
    {41, "void AddSelection(short idx)"},
    {42, "void ResetVariableObjects()"},
    {43, "void AddVariableObject(short idx)"},
    {44, "void AlignInteractive()"},
    {45, "void AlignPickPoints()"},
    {46, "void PerformRefresh()"},
    {47, "void SetArrowAngle(short angle)"},
    {48, "void CenterView()"},
    {49, "void SetScanSkipVal(short skipVal)"},
    {50, "short GetTrafoOfScan(short idx, float* v0, float* v1, float* v2, float* v3, float* v4, float* v5, float* v6, float* v7, float* v8, float* v9, float* v10, float* v11, float* v12, float* v13, float* v14, float* v15)"},
    {51, "void SetObjectVisibility(short idx, short visible)"},
    {52, "void ShowAxes(short show)"},
    {53, "void SetConfidenceFilter(float confFilter)"},
    {54, "void FinishInteraction()"},
    {55, "void SetBackgroundColors(long TopColor, long BottomColor)"},
    {56, "void DeleteObject(short idx)"},
    {57, "VARIANT_BOOL CreateNeedles(int number, VARIANT* id, VARIANT* pinPosXYZ, VARIANT* headPosXYZ)"},
    {58, "void DeleteNeedles()"},
    {59, "VARIANT_BOOL GetObjectCenter(short objectIdx, float* x, float* y, float* z)"},
    {60, "VARIANT_BOOL SetViewParams(float wx1, float wx2, float wx3, float wy1, float wy2, float wy3, float cx, float cy, float cz, float zoom, short freezeBBox)"},
    {61, "int AddPickPointSphere(float x, float y, float z, long color)"},
    {62, "void AllowMouseInteraction(short on)"},
    {63, "VARIANT_BOOL SaveCuttingToPcms()"},
    {64, "void SetIGDRotation(short on)"},
    {65, "void SetReflection(float brightness, float shining)"},
    {66, "short SetTrafoOfScan(short idx, float v0, float v1, float v2, float v3, float v4, float v5, float v6, float v7, float v8, float v9, float v10, float v11, float v12, float v13, float v14, float v15)"},
    {67, "void GetViewParams(float* wx1, float* wx2, float* wx3, float* wy1, float* wy2, float* wy3, float* cx, float* cy, float* cz, float* zoom)"},
    {68, "void EndSegmentation()"},
    {69, "void SetShadowMode(short mode)"},
    {70, "short GetShadowMode()"},
    {71, "void SetBackgroundColorsFourCorners(long TopLeftColor, long TopRightColor, long BottomLeftColor, long BottomRightColor)"},
    {72, "void SetPickRadius(float r)"},
    {73, "void PerformInvalidate()"},
    {74, "void GetObjectBoundingBox(short objectIdx, float* x_min, float* x_max, float* y_min, float* y_max, float* z_min, float* z_max)"},
    {75, "VARIANT_BOOL CreateNeedle(int id, float pinPosX, float pinPosY, float pinPosZ, float headPosX, float headPosY, float headPosZ)"},
    {76, "void BeginParallelImport(VARIANT* p_this, VARIANT* p_fn)"},
    {77, "void EndParallelImport()"},
    {78, "void SetAllowEmptyObjects(VARIANT_BOOL allow)"},
    {79, "void BlockPaintEvents(VARIANT_BOOL block)"},
    {80, "void SetMeshFilename_Removed()"},
    {81, "void SetLine3DDrawingMode(VARIANT_BOOL enable)"},
    {82, "VARIANT_BOOL GetLine3DDrawingMode()"},
    {83, "VARIANT_BOOL CreateLine3D(int id, int numberOfXYZs, VARIANT* XYZs)"},
    {84, "void DeletePoints(int id)"},
    {85, "void SetPointsVisibility(int id, VARIANT_BOOL visible)"},
    {86, "int ImportPoints(int numPoints, VARIANT* xyz, VARIANT* colors, float alpha)"},
    {87, "short GetScanSkipVal()"},
    {88, "void SetBlendObjectColors(short idx, short enabled)"},
    {89, "void SetShadowColor(float red, float green, float blue)"},
    {90, "void ImportMeshedMeasurement(VARIANT* mesh, BSTR filename, long color)"},
    {91, "void StartAnimation(float revolutionsPerSecond)"},
    {92, "void StopAnimation()"},
    {93, "void ToggleAnimationOnSpacebar(long enabled)"},
    {94, "VARIANT_BOOL IsAnimationRunning()"},
    {95, "void SetAnimationSpeed(float revolutionsPerSecond)"},
    {96, "void SetPointCloudRenderPointSize(float size)"},
    {97, "void CaptureScreenShot(VARIANT* buffer)"},
    {98, "void GetScreenShotResolution(long* width, long* height)"},
    {99, "int AddOverlayData(VARIANT* argbU8DataPtrHack, int width, int height, float relPosX, float relPosY, float relOffsetX, float relOffsetY, float absOffsetX, float absOffsetY)"},
    {100, "void SetOverlayVisibility(int index, long enable)"},
    {101, "void SetDefaultZoomFactor(float newDefault)"},
    {102, "void SetClipPlaneEnabled(long displayClipPlane)"},
    {103, "void SetClipPlaneDisabled()"},
    {104, "void SetClipPlane(float centerX, float centerY, float centerZ, float normalX, float normalY, float normalZ)"},
    {105, "void SetClipPlaneColor(long color, long handleColor, long outlineColor)"},
    {106, "void GetClipPlane(float* centerX, float* centerY, float* centerZ, float* normalX, float* normalY, float* normalZ)"},
    {107, "void SetNeedlePickingMode(VARIANT_BOOL enable)"},
    {108, "void SetNeedleDrawingMode(VARIANT_BOOL enable)"},
    {109, "void SetNeedleRenderParameters(float needleLength, float needleHeadRadius, long needleHeadColor, float needlePinSize, long needlePinColor, float needleHitPointRadius, long needleHitPointColor, long needleHeadSelectionColor)"},
    {110, "VARIANT_BOOL GetNeedlePickingMode()"},
    {111, "VARIANT_BOOL GetNeedleDrawingMode()"},
    {112, "VARIANT_BOOL DeleteNeedle(int id)"},
    {113, "int GetNumberOfNeedles()"},
    {114, "VARIANT_BOOL GetNeedle(int id, float* pinPosX, float* pinPosY, float* pinPosZ, float* headPosX, float* headPosY, float* headPosZ)"},
    {115, "void GetNeedles(VARIANT* id, VARIANT* pinPosXYZ, VARIANT* headPosXYZ)"},
    {116, "void ImportMeasurementFromMemory(int width, int height, VARIANT* points, VARIANT* confidence, VARIANT* trafo, long color)"},
    {117, "void ImportMeshFromMemory(int numberOfVertices, int numberOfTriangles, VARIANT* vertices, VARIANT* triangles)"},
    {118, "VARIANT_BOOL GetCutMasks(int* count, VARIANT* cutMaskPtrs)"},
    {119, "void ClearCutMasks()"},
    {120, "void InitializeKVReg()"},
    {121, "void FinalizeKVReg()"},
    {122, "void SetHpsSourceApp(BSTR appName, BSTR appVersion)"},
    {-552, "void AboutBox()"},
};

const Declaration kEvents[] = {
    {-609, "void ReadyStateChange()"},
    {1, "void SelectViewDirection(float px, float py, float pz, float vx, float vy, float vz)"},
    {2, "void SelectObjCoords(short idx, float px, float py, float pz, int shiftModifiers, int mouseX, int mouseY)"},
    {3, "void SegmentationDone(short numObj)"},
    {4, "void ViewDirectionChanged(float vx, float vy, float vz)"},
    {5, "void AlignmentDone()"},
    {6, "void NeedleCreated(int id)"},
    {7, "void NeedleSelected(int id)"},
    {8, "void NeedleDeleted(int id)"},
    {9, "void NeedleDeselected(int id)"},
    {10, "void CustomKeyDown(long nChar, long nRepCnt, long nFlags)"},
    {11, "void PickPointCountChanged(int newCount)"},
    {12, "void CutMaskApplied(int64 addr)"},
};

// clang-format on

/// Pointer arguments: where they lead to.
struct Pointers {
    const char* method;
    const char* arguments;  // names with blanks between them
    bool output;
    const char* element;
    const char* shape;
};

// clang-format off
const Pointers kPointers[] = {
    {"GetPickPointSphereCoords", "x y z", true, "float32", ""},
    {"GetViewDirection", "px py pz vx vy vz", true, "float32", ""},
    {"GetMeshDataSize", "numP numT", true, "int32", ""},
    {"GetTrafoOfScan", "v0 v1 v2 v3 v4 v5 v6 v7 v8 v9 v10 v11 v12 v13 v14 v15", true, "float32", ""},
    {"CreateNeedles", "id", false, "int32", "number"},
    {"CreateNeedles", "pinPosXYZ headPosXYZ", false, "float32", "number x 3"},
    {"GetObjectCenter", "x y z", true, "float32", ""},
    {"GetViewParams", "wx1 wx2 wx3 wy1 wy2 wy3 cx cy cz zoom", true, "float32", ""},
    {"GetObjectBoundingBox", "x_min x_max y_min y_max z_min z_max", true, "float32", ""},
    {"BeginParallelImport", "p_this p_fn", true, "pointer", ""},
    {"CreateLine3D", "XYZs", false, "float32", "numberOfXYZs x 3"},
    {"ImportPoints", "xyz colors", false, "float32", "numPoints x 3"},
    {"ImportMeshedMeasurement", "mesh", false, "mesh", ""},
    {"CaptureScreenShot", "buffer", true, "uint32", "2048 x 2048"},
    {"GetScreenShotResolution", "width height", true, "int32", ""},
    {"AddOverlayData", "argbU8DataPtrHack", false, "uint8", "height x width x 4"},
    {"GetClipPlane", "centerX centerY centerZ normalX normalY normalZ", true, "float32", ""},
    {"GetNeedle", "pinPosX pinPosY pinPosZ headPosX headPosY headPosZ", true, "float32", ""},
    {"GetNeedles", "id", true, "int32", "GetNumberOfNeedles"},
    {"GetNeedles", "pinPosXYZ headPosXYZ", true, "float32", "GetNumberOfNeedles x 3"},
    {"ImportMeasurementFromMemory", "points", false, "float32", "height x width x 3"},
    {"ImportMeasurementFromMemory", "confidence", false, "float32", "height x width"},
    {"ImportMeasurementFromMemory", "trafo", false, "float32", "4 x 4"},
    {"ImportMeshFromMemory", "vertices", false, "float32", "numberOfVertices x 3"},
    {"ImportMeshFromMemory", "triangles", false, "int32", "numberOfTriangles x 3"},
    {"GetCutMasks", "count", true, "int32", ""},
    {"GetCutMasks", "cutMaskPtrs", true, "pointer", "count"},
};
// clang-format on

std::string Text(std::string_view result, std::string_view name, const std::vector<AutomationArgument>& arguments) {
    std::string text = std::string(result) + " " + std::string(name) + "(";
    for (const AutomationArgument& argument : arguments) {
        if (text.back() != '(') text += ", ";
        text += std::string(argument.type) + " " + std::string(argument.name);
    }
    return text + ")";
}

// ---- the table against the declarations

TEST(AutomationTable, HasThe120MethodsInTheOrderOfTheirIdsAsDeclared) {
    const auto methods = AutomationMethods();
    ASSERT_EQ(std::size(kMethods), 120u);
    ASSERT_EQ(methods.size(), std::size(kMethods));
    for (std::size_t i = 0; i < methods.size(); ++i) {
        EXPECT_EQ(methods[i].id, kMethods[i].id) << kMethods[i].text;
        EXPECT_EQ(Text(methods[i].result, methods[i].name, methods[i].arguments), kMethods[i].text);
    }
}

TEST(AutomationTable, HasTheFourProperties) {
    const auto properties = AutomationProperties();
    ASSERT_EQ(properties.size(), 4u);
    const AutomationProperty expected[] = {{1, "VARIANT_BOOL", "DrawMosaic", true},
                                           {2, "short", "DrawMode", true},
                                           {3, "VARIANT_BOOL", "MoveReduced", true},
                                           {-525, "long", "ReadyState", false}};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(properties[i].id, expected[i].id);
        EXPECT_EQ(properties[i].type, expected[i].type);
        EXPECT_EQ(properties[i].name, expected[i].name);
        EXPECT_EQ(properties[i].writable, expected[i].writable) << expected[i].name;
    }
}

TEST(AutomationTable, HasThe13EventsAsDeclared) {
    const auto events = AutomationEvents();
    ASSERT_EQ(std::size(kEvents), 13u);
    ASSERT_EQ(events.size(), std::size(kEvents));
    for (std::size_t i = 0; i < events.size(); ++i) {
        EXPECT_EQ(events[i].id, kEvents[i].id) << kEvents[i].text;
        EXPECT_EQ(Text("void", events[i].name, events[i].arguments), kEvents[i].text);
    }
}

/// "out float32 number x 3" by "Method.argument".
using PointerMap = std::map<std::string, std::string>;

std::string PointerText(bool output, std::string_view element, std::string_view shape) {
    return std::string(output ? "out " : "in ").append(element).append(" ").append(shape);
}

TEST(AutomationTable, HasDirectionElementAndShapeOfEveryPointer) {
    PointerMap expected, found;
    for (const Pointers& row : kPointers) {
        std::istringstream names(row.arguments);
        for (std::string name; names >> name;)
            expected[std::string(row.method) + "." + name] = PointerText(row.output, row.element, row.shape);
    }
    ASSERT_EQ(expected.size(), 81u);
    for (const AutomationMethod& method : AutomationMethods())
        for (const AutomationArgument& argument : method.arguments)
            if (argument.type.ends_with('*'))
                found[std::string(method.name) + "." + std::string(argument.name)] =
                    PointerText(argument.output, argument.element, argument.shape);
    EXPECT_EQ(found, expected);
}

void ExpectNoPointer(const AutomationArgument& argument, std::string_view member) {
    EXPECT_FALSE(argument.output) << member << "." << argument.name;
    EXPECT_EQ(argument.element, "") << member << "." << argument.name;
    EXPECT_EQ(argument.shape, "") << member << "." << argument.name;
}

TEST(AutomationTable, HasNoElementOrShapeOfAValue) {
    for (const AutomationMethod& method : AutomationMethods())
        for (const AutomationArgument& argument : method.arguments)
            if (!argument.type.ends_with('*')) ExpectNoPointer(argument, method.name);
    for (const AutomationEvent& event : AutomationEvents())
        for (const AutomationArgument& argument : event.arguments) ExpectNoPointer(argument, event.name);
}

TEST(AutomationTable, NamesInShapesAreArgumentsOrMethods) {
    for (const AutomationMethod& method : AutomationMethods())
        for (const AutomationArgument& argument : method.arguments) {
            std::istringstream words{std::string(argument.shape)};
            for (std::string word; words >> word;) {
                const bool isNumber = word.find_first_not_of("0123456789") == std::string::npos;
                const bool isArgument =
                    std::ranges::find(method.arguments, word, &AutomationArgument::name) != method.arguments.end();
                const bool isMethod =
                    std::ranges::find(AutomationMethods(), word, &AutomationMethod::name) != AutomationMethods().end();
                EXPECT_TRUE(isNumber || isArgument || isMethod || word == "x") << method.name << ": " << word;
            }
        }
}

/// Letter of a declared type in a signature.
char LetterOf(std::string_view type) {
    const std::map<std::string_view, char> letters = {{"void", 'v'}, {"short", 's'}, {"VARIANT_BOOL", 's'},
                                                      {"long", 'i'}, {"int", 'i'},   {"float", 'f'},
                                                      {"BSTR", 'w'}, {"int64", 'l'}};
    return type.ends_with('*') ? 'p' : letters.at(type);
}

template <class Row>
std::string SignatureOf(std::string_view result, const Row& row) {
    std::string signature(1, LetterOf(result));
    for (const AutomationArgument& argument : row.arguments) signature += LetterOf(argument.type);
    return signature;
}

TEST(AutomationTable, HasSignaturesThatAgreeWithItsTypes) {
    for (const AutomationMethod& method : AutomationMethods())
        EXPECT_EQ(method.signature, SignatureOf(method.result, method)) << method.name;
    for (const AutomationEvent& event : AutomationEvents())
        EXPECT_EQ(event.signature, SignatureOf("void", event)) << event.name;
    for (const AutomationProperty& property : AutomationProperties()) {
        EXPECT_EQ(property.code, LetterOf(property.type)) << property.name;
        EXPECT_NE(property.get, nullptr) << property.name;
        EXPECT_EQ(property.put != nullptr, property.writable) << property.name;
    }
}

// ---- the table against the abstract classes that hosts compile against

struct HeaderFunction {
    std::string result, name;
    std::vector<std::pair<std::string, std::string>> arguments;  // type, name
};

/// The virtual functions of a public header, in order.
std::vector<HeaderFunction> FunctionsOf(const std::string& header, const std::string& ending) {
    std::ifstream file(std::string(KV_SOURCE_DIR "/include/KV_ScenePane/") + header);
    std::string text(std::istreambuf_iterator<char>(file), {});
    text = std::regex_replace(text, std::regex("//[^\n]*"), "");
    text = std::regex_replace(text, std::regex("/\\*|\\*/"), "");
    const std::regex function("virtual (\\S+) (\\w+)\\(([^)]*)\\) " + ending);
    const std::regex argument("\\s*(?:const )?([^,]*?) ?(\\w+)\\s*(?:,|$)");
    std::vector<HeaderFunction> functions;
    for (std::sregex_iterator f(text.begin(), text.end(), function), end; f != end; ++f) {
        HeaderFunction found{(*f)[1], (*f)[2], {}};
        const std::string arguments = (*f)[3];
        for (std::sregex_iterator a(arguments.begin(), arguments.end(), argument); a != end; ++a)
            found.arguments.emplace_back((*a)[1], (*a)[2]);
        functions.push_back(found);
    }
    return functions;
}

/// The C++ type of a declared type; arrays of the host are plain pointers to their elements.
bool IsTypeFor(std::string_view automation, const std::string& cpp) {
    const std::map<std::string_view, std::string> types = {
        {"void", "void"},          {"short", "std::int16_t"}, {"VARIANT_BOOL", "VARIANT_BOOL"},
        {"long", "std::int32_t"},  {"int", "std::int32_t"},   {"float", "float"},
        {"BSTR", "BSTR"},          {"float*", "float*"},      {"long*", "std::int32_t*"},
        {"int*", "std::int32_t*"}, {"int64", "std::int64_t"}};
    return automation == "VARIANT*" ? cpp.ends_with('*') : types.at(automation) == cpp;
}

template <class Row>
void ExpectSameArguments(const Row& row, const HeaderFunction& function) {
    ASSERT_EQ(row.arguments.size(), function.arguments.size()) << row.name;
    for (std::size_t a = 0; a < row.arguments.size(); ++a) {
        EXPECT_EQ(row.arguments[a].name, function.arguments[a].second) << row.name;
        EXPECT_TRUE(IsTypeFor(row.arguments[a].type, function.arguments[a].first))
            << row.name << ": " << row.arguments[a].type << " against " << function.arguments[a].first;
    }
}

TEST(AutomationTable, AgreesWithTheAbstractClassInNamesOrderAndTypes) {
    const std::vector<HeaderFunction> functions = FunctionsOf("_DKV_ScenePane.h", "= 0;");
    const auto methods = AutomationMethods();
    const std::size_t accessors = 7;  // three properties to read and write, one to read
    ASSERT_EQ(functions.size(), accessors + methods.size());
    for (std::size_t i = 0; i < methods.size(); ++i) {
        const HeaderFunction& function = functions[accessors + i];
        EXPECT_EQ(methods[i].name, function.name);
        EXPECT_TRUE(IsTypeFor(methods[i].result, function.result)) << function.name;
        ExpectSameArguments(methods[i], function);
    }
}

TEST(AutomationTable, AgreesWithTheAbstractClassInItsProperties) {
    const std::vector<HeaderFunction> functions = FunctionsOf("_DKV_ScenePane.h", "= 0;");
    std::size_t next = 0;
    for (const AutomationProperty& property : AutomationProperties()) {
        ASSERT_LT(next + 1, functions.size());
        EXPECT_EQ(functions[next].name, "Get" + std::string(property.name));
        EXPECT_TRUE(IsTypeFor(property.type, functions[next++].result)) << property.name;
        if (!property.writable) continue;
        EXPECT_EQ(functions[next].name, "Set" + std::string(property.name));
        ASSERT_EQ(functions[next].arguments.size(), 1u);
        EXPECT_TRUE(IsTypeFor(property.type, functions[next++].arguments[0].first)) << property.name;
    }
    EXPECT_EQ(next, 7u);
}

TEST(AutomationTable, AgreesWithTheAbstractClassOfTheEvents) {
    const std::vector<HeaderFunction> functions = FunctionsOf("_DKV_ScenePaneEvents.h", "\\{\\}");
    const auto events = AutomationEvents();
    ASSERT_EQ(functions.size(), events.size());
    for (std::size_t i = 0; i < events.size(); ++i) {
        EXPECT_EQ(events[i].name, functions[i].name);
        ExpectSameArguments(events[i], functions[i]);
    }
}

}  // namespace

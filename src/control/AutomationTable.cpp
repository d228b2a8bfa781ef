// The table of the automation surface. The C++ types of a row are deduced from the method itself, so that table and
// class cannot differ in them; names and declared types are text, and a test compares them with the public header.
#include "control/AutomationTable.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <string>
#include <tuple>
#include <type_traits>
#include <unordered_map>
#include <utility>

namespace {

using Surface = KV_ScenePane::_DKV_ScenePane;
using Events = KV_ScenePane::_DKV_ScenePaneEvents;

// One letter per C++ type, as AutomationMethod::signature lists them.
template <typename T>
constexpr char TypeCode() {
    if constexpr (std::is_void_v<T>)
        return 'v';
    else if constexpr (std::is_same_v<T, std::int16_t>)
        return 's';
    else if constexpr (std::is_same_v<T, std::int32_t>)
        return 'i';
    else if constexpr (std::is_same_v<T, float>)
        return 'f';
    else if constexpr (std::is_same_v<T, const wchar_t*>)
        return 'w';
    else if constexpr (std::is_same_v<T, std::int64_t>)
        return 'l';
    else {
        static_assert(std::is_pointer_v<T>);
        return 'p';
    }
}

// A pointer to something that is not const is an output argument.
template <typename T>
constexpr bool IsOutput() {
    return std::is_pointer_v<T> && !std::is_const_v<std::remove_pointer_t<T>>;
}

// Type of what a pointer leads to, as AutomationArgument::element names it; empty for a value.
template <typename T>
constexpr std::string_view ElementName() {
    using Element = std::remove_cv_t<std::remove_pointer_t<T>>;
    if constexpr (!std::is_pointer_v<T> || std::is_same_v<T, const wchar_t*>)
        return "";
    else if constexpr (std::is_same_v<Element, std::int32_t>)
        return "int32";
    else if constexpr (std::is_same_v<Element, float>)
        return "float32";
    else if constexpr (std::is_same_v<Element, std::uint8_t>)
        return "uint8";
    else if constexpr (std::is_same_v<Element, std::uint32_t>)
        return "uint32";
    else if constexpr (std::is_same_v<Element, KV_ScenePane::MeshBuffers>)
        return "mesh";
    else {
        static_assert(std::is_pointer_v<Element>);
        return "pointer";
    }
}

// Pointers are stored untyped, every other value with its type.
template <typename T>
T Unpack(const AutomationValue& value) {
    if constexpr (TypeCode<T>() == 'p')
        return static_cast<T>(std::get<void*>(value));
    else
        return std::get<T>(value);
}

// Signature, output arguments and call of one method or event, deduced from its pointer to member.
template <auto Method>
struct MethodTraits;
template <typename Target, typename Result, typename... Arguments, Result (Target::*Method)(Arguments...)>
struct MethodTraits<Method> {
    static constexpr std::array<char, sizeof...(Arguments) + 1> kSignature{TypeCode<Result>(),
                                                                           TypeCode<Arguments>()...};
    static constexpr std::string_view kSignatureText{kSignature.data(), kSignature.size()};
    static constexpr std::array<bool, sizeof...(Arguments)> kOutputs{IsOutput<Arguments>()...};
    static constexpr std::array<std::string_view, sizeof...(Arguments)> kElements{ElementName<Arguments>()...};

    static AutomationValue Invoke(Target& target, std::span<const AutomationValue> arguments) {
        return Call(target, arguments, std::index_sequence_for<Arguments...>());
    }

private:
    template <std::size_t... I>
    static AutomationValue Call(Target& target, [[maybe_unused]] std::span<const AutomationValue> arguments,
                                std::index_sequence<I...>) {
        if constexpr (std::is_void_v<Result>) {
            (target.*Method)(Unpack<Arguments>(arguments[I])...);
            return std::monostate();
        } else {
            return (target.*Method)(Unpack<Arguments>(arguments[I])...);
        }
    }
};

// A property from the method that reads it and the one that writes it; without the latter it is read only.
template <auto Get, auto Put = nullptr>
AutomationProperty Property(std::int32_t id, std::string_view type, std::string_view name) {
    AutomationProperty property{id, type, name, false, MethodTraits<Get>::kSignature[0], [](Surface& target) {
                                    return MethodTraits<Get>::Invoke(target, {});
                                }};
    if constexpr (Put != nullptr) {
        static_assert(MethodTraits<Put>::kSignature[1] == MethodTraits<Get>::kSignature[0]);
        property.writable = true;
        property.put = [](Surface& target, const AutomationValue& value) {
            MethodTraits<Put>::Invoke(target, {&value, 1});
        };
    }
    return property;
}

// Finds rows of a table. Ids from 0 are places in a list; there is at most one negative id per table.
template <typename Row>
class RowIndex {
public:
    explicit RowIndex(std::span<const Row> rows) {
        for (const Row& row : rows) {
            m_byName.emplace(row.name, &row);
            if (row.id < 0) {
                assert(m_pNegative == nullptr);
                m_pNegative = &row;
                continue;
            }
            const auto place = static_cast<std::size_t>(row.id);
            if (place >= m_byId.size()) m_byId.resize(place + 1, nullptr);
            m_byId[place] = &row;
        }
    }

    [[nodiscard]] const Row* Find(std::int32_t id) const {
        if (id < 0) return m_pNegative != nullptr && m_pNegative->id == id ? m_pNegative : nullptr;
        const auto place = static_cast<std::size_t>(id);
        return place < m_byId.size() ? m_byId[place] : nullptr;
    }
    [[nodiscard]] const Row* Find(std::string_view name) const {
        const auto found = m_byName.find(name);
        return found == m_byName.end() ? nullptr : found->second;
    }

private:
    std::vector<const Row*> m_byId;
    const Row* m_pNegative = nullptr;
    std::unordered_map<std::string_view, const Row*> m_byName;
};

struct Declaration {
    std::string_view result, name;
    std::vector<AutomationArgument> arguments;
};

// Splits "type name(type name, type name)". The table below is the only input, hence no error handling.
Declaration Parse(std::string_view text) {
    const auto splitAtLastSpace = [](std::string_view part) {
        const std::size_t space = part.rfind(' ');
        return std::pair{part.substr(0, space), part.substr(space + 1)};
    };
    const std::size_t open = text.find('(');
    assert(open != std::string_view::npos && text.back() == ')');
    Declaration declaration;
    std::tie(declaration.result, declaration.name) = splitAtLastSpace(text.substr(0, open));
    std::string_view list = text.substr(open + 1, text.size() - open - 2);
    while (!list.empty()) {
        const std::size_t comma = std::min(list.find(','), list.size());
        const auto [type, name] = splitAtLastSpace(list.substr(0, comma));
        declaration.arguments.push_back({type, name, false});
        list.remove_prefix(std::min(comma + 2, list.size()));
    }
    return declaration;
}

struct ArrayShape {
    std::string_view method, argument, shape;
};

// The arrays that pointers in VARIANT* arguments lead to.
constexpr ArrayShape kArrayShapes[] = {{"CreateNeedles", "id", "number"},
                                       {"CreateNeedles", "pinPosXYZ", "number x 3"},
                                       {"CreateNeedles", "headPosXYZ", "number x 3"},
                                       {"GetNeedles", "id", "GetNumberOfNeedles"},
                                       {"GetNeedles", "pinPosXYZ", "GetNumberOfNeedles x 3"},
                                       {"GetNeedles", "headPosXYZ", "GetNumberOfNeedles x 3"},
                                       {"CreateLine3D", "XYZs", "numberOfXYZs x 3"},
                                       {"ImportPoints", "xyz", "numPoints x 3"},
                                       {"ImportPoints", "colors", "numPoints x 3"},
                                       {"ImportMeasurementFromMemory", "points", "height x width x 3"},
                                       {"ImportMeasurementFromMemory", "confidence", "height x width"},
                                       {"ImportMeasurementFromMemory", "trafo", "4 x 4"},
                                       {"ImportMeshFromMemory", "vertices", "numberOfVertices x 3"},
                                       {"ImportMeshFromMemory", "triangles", "numberOfTriangles x 3"},
                                       {"CaptureScreenShot", "buffer", "2048 x 2048"},
                                       {"AddOverlayData", "argbU8DataPtrHack", "height x width x 4"},
                                       {"GetCutMasks", "cutMaskPtrs", "count"}};

std::string_view ShapeOf(std::string_view method, std::string_view argument) {
    for (const ArrayShape& array : kArrayShapes)
        if (array.method == method && array.argument == argument) return array.shape;
    return {};
}

template <auto Method>
AutomationMethod Row(std::int32_t id, std::string_view text) {
    using Traits = MethodTraits<Method>;
    Declaration declaration = Parse(text);
    for (std::size_t i = 0; i < Traits::kOutputs.size(); ++i) {
        AutomationArgument& argument = declaration.arguments[i];
        argument.output = Traits::kOutputs[i];
        argument.element = Traits::kElements[i];
        argument.shape = ShapeOf(declaration.name, argument.name);
    }
    return {id,
            declaration.result,
            declaration.name,
            std::move(declaration.arguments),
            Traits::kSignatureText,
            &Traits::Invoke};
}

template <auto Handler>
AutomationEvent Event(std::int32_t id, std::string_view text) {
    using Traits = MethodTraits<Handler>;
    Declaration declaration = Parse(text);
    return {id, declaration.name, std::move(declaration.arguments), Traits::kSignatureText, &Traits::Invoke};
}

// clang-format off
const std::vector<AutomationMethod>& Methods() {
    static const std::vector<AutomationMethod> methods{
        Row<&Surface::SetSize>(4, "void SetSize(short sx, short sy)"),
        Row<&Surface::ClearData>(5, "void ClearData()"),
        Row<&Surface::ClearUndoStack>(6, "void ClearUndoStack()"),
        Row<&Surface::SetLassoCuttingColors>(7, "void SetLassoCuttingColors(long inside, float insideOpacity, long outside, float outsideOpacity)"),
        Row<&Surface::DisplayClipPlanePartCloseToData>(8, "void DisplayClipPlanePartCloseToData()"),
        Row<&Surface::FindNearestPickPointSphere>(9, "int FindNearestPickPointSphere(int sx, int sy)"),
        Row<&Surface::RemovePickPointSphere>(10, "void RemovePickPointSphere(int id)"),
        Row<&Surface::GetPickPointSphereCoords>(11, "void GetPickPointSphereCoords(int id, float* x, float* y, float* z)"),
        Row<&Surface::GetNumberOfPickPointSpheres>(12, "int GetNumberOfPickPointSpheres()"),
        Row<&Surface::SetMaxNumberOfNeedles>(13, "void SetMaxNumberOfNeedles(int num)"),
        Row<&Surface::DeselectNeedle>(14, "VARIANT_BOOL DeselectNeedle(int id)"),
        Row<&Surface::DeselectAllNeedles>(15, "void DeselectAllNeedles()"),
        Row<&Surface::SelectNeedle>(16, "void SelectNeedle(int id)"),
        Row<&Surface::RecreateOpenglContext>(17, "VARIANT_BOOL RecreateOpenglContext(int majorVersion, int minorVersion, int numberOfSamples)"),
        Row<&Surface::SetPickMode>(18, "void SetPickMode(short mode)"),
        Row<&Surface::GetPickMode>(19, "short GetPickMode()"),
        Row<&Surface::SetCrossColor>(20, "void SetCrossColor(long color)"),
        Row<&Surface::GetCrossColor>(21, "long GetCrossColor()"),
        Row<&Surface::GetViewDirection>(22, "VARIANT_BOOL GetViewDirection(float* px, float* py, float* pz, float* vx, float* vy, float* vz)"),
        Row<&Surface::GetNumObjects>(23, "short GetNumObjects()"),
        Row<&Surface::GetObjectColor>(24, "long GetObjectColor(short idx)"),
        Row<&Surface::SetObjectColor>(25, "void SetObjectColor(short idx, long color)"),
        Row<&Surface::StartSegmentation>(26, "void StartSegmentation(short mode)"),
        Row<&Surface::GetMeshDataSize>(27, "void GetMeshDataSize(short objIdx, long* numP, long* numT)"),
        Row<&Surface::ClearPickPointSpheres>(28, "void ClearPickPointSpheres()"),
        Row<&Surface::MovePickPointSphere>(29, "void MovePickPointSphere(int id, float x, float y, float z)"),
        Row<&Surface::PerformUndo>(30, "int PerformUndo()"),
        Row<&Surface::ImportMesh>(31, "void ImportMesh(BSTR path)"),
        Row<&Surface::ExportMesh>(32, "void ExportMesh(short objIdx, BSTR path)"),
        Row<&Surface::ImportScan>(33, "void ImportScan(BSTR path, long color)"),
        Row<&Surface::ShowLightingArrow>(34, "void ShowLightingArrow(short show)"),
        Row<&Surface::SetArrowColor>(35, "void SetArrowColor(long color)"),
        Row<&Surface::TracingMode>(36, "void TracingMode(short on)"),
        Row<&Surface::FlipMouseButtons>(37, "void FlipMouseButtons(short flip)"),
        Row<&Surface::SetRotationMode>(38, "void SetRotationMode(short mode)"),
        Row<&Surface::SetViewMode>(39, "void SetViewMode(short mode)"),
        Row<&Surface::ResetSelection>(40, "void ResetSelection()"),
        Row<&Surface::AddSelection>(41, "void AddSelection(short idx)"),
        Row<&Surface::ResetVariableObjects>(42, "void ResetVariableObjects()"),
        Row<&Surface::AddVariableObject>(43, "void AddVariableObject(short idx)"),
        Row<&Surface::AlignInteractive>(44, "void AlignInteractive()"),
        Row<&Surface::AlignPickPoints>(45, "void AlignPickPoints()"),
        Row<&Surface::PerformRefresh>(46, "void PerformRefresh()"),
        Row<&Surface::SetArrowAngle>(47, "void SetArrowAngle(short angle)"),
        Row<&Surface::CenterView>(48, "void CenterView()"),
        Row<&Surface::SetScanSkipVal>(49, "void SetScanSkipVal(short skipVal)"),
        Row<&Surface::GetTrafoOfScan>(50, "short GetTrafoOfScan(short idx, float* v0, float* v1, float* v2, float* v3, float* v4, float* v5, float* v6, float* v7, float* v8, float* v9, float* v10, float* v11, float* v12, float* v13, float* v14, float* v15)"),
        Row<&Surface::SetObjectVisibility>(51, "void SetObjectVisibility(short idx, short visible)"),
        Row<&Surface::ShowAxes>(52, "void ShowAxes(short show)"),
        Row<&Surface::SetConfidenceFilter>(53, "void SetConfidenceFilter(float confFilter)"),
        Row<&Surface::FinishInteraction>(54, "void FinishInteraction()"),
        Row<&Surface::SetBackgroundColors>(55, "void SetBackgroundColors(long TopColor, long BottomColor)"),
        Row<&Surface::DeleteObject>(56, "void DeleteObject(short idx)"),
        Row<&Surface::CreateNeedles>(57, "VARIANT_BOOL CreateNeedles(int number, VARIANT* id, VARIANT* pinPosXYZ, VARIANT* headPosXYZ)"),
        Row<&Surface::DeleteNeedles>(58, "void DeleteNeedles()"),
        Row<&Surface::GetObjectCenter>(59, "VARIANT_BOOL GetObjectCenter(short objectIdx, float* x, float* y, float* z)"),
        Row<&Surface::SetViewParams>(60, "VARIANT_BOOL SetViewParams(float wx1, float wx2, float wx3, float wy1, float wy2, float wy3, float cx, float cy, float cz, float zoom, short freezeBBox)"),
        Row<&Surface::AddPickPointSphere>(61, "int AddPickPointSphere(float x, float y, float z, long color)"),
        Row<&Surface::AllowMouseInteraction>(62, "void AllowMouseInteraction(short on)"),
        Row<&Surface::SaveCuttingToPcms>(63, "VARIANT_BOOL SaveCuttingToPcms()"),
        Row<&Surface::SetIGDRotation>(64, "void SetIGDRotation(short on)"),
        Row<&Surface::SetReflection>(65, "void SetReflection(float brightness, float shining)"),
        Row<&Surface::SetTrafoOfScan>(66, "short SetTrafoOfScan(short idx, float v0, float v1, float v2, float v3, float v4, float v5, float v6, float v7, float v8, float v9, float v10, float v11, float v12, float v13, float v14, float v15)"),
        Row<&Surface::GetViewParams>(67, "void GetViewParams(float* wx1, float* wx2, float* wx3, float* wy1, float* wy2, float* wy3, float* cx, float* cy, float* cz, float* zoom)"),
        Row<&Surface::EndSegmentation>(68, "void EndSegmentation()"),
        Row<&Surface::SetShadowMode>(69, "void SetShadowMode(short mode)"),
        Row<&Surface::GetShadowMode>(70, "short GetShadowMode()"),
        Row<&Surface::SetBackgroundColorsFourCorners>(71, "void SetBackgroundColorsFourCorners(long TopLeftColor, long TopRightColor, long BottomLeftColor, long BottomRightColor)"),
        Row<&Surface::SetPickRadius>(72, "void SetPickRadius(float r)"),
        Row<&Surface::PerformInvalidate>(73, "void PerformInvalidate()"),
        Row<&Surface::GetObjectBoundingBox>(74, "void GetObjectBoundingBox(short objectIdx, float* x_min, float* x_max, float* y_min, float* y_max, float* z_min, float* z_max)"),
        Row<&Surface::CreateNeedle>(75, "VARIANT_BOOL CreateNeedle(int id, float pinPosX, float pinPosY, float pinPosZ, float headPosX, float headPosY, float headPosZ)"),
        Row<&Surface::BeginParallelImport>(76, "void BeginParallelImport(VARIANT* p_this, VARIANT* p_fn)"),
        Row<&Surface::EndParallelImport>(77, "void EndParallelImport()"),
        Row<&Surface::SetAllowEmptyObjects>(78, "void SetAllowEmptyObjects(VARIANT_BOOL allow)"),
        Row<&Surface::BlockPaintEvents>(79, "void BlockPaintEvents(VARIANT_BOOL block)"),
        Row<&Surface::SetMeshFilename_Removed>(80, "void SetMeshFilename_Removed()"),
        Row<&Surface::SetLine3DDrawingMode>(81, "void SetLine3DDrawingMode(VARIANT_BOOL enable)"),
        Row<&Surface::GetLine3DDrawingMode>(82, "VARIANT_BOOL GetLine3DDrawingMode()"),
        Row<&Surface::CreateLine3D>(83, "VARIANT_BOOL CreateLine3D(int id, int numberOfXYZs, VARIANT* XYZs)"),
        Row<&Surface::DeletePoints>(84, "void DeletePoints(int id)"),
        Row<&Surface::SetPointsVisibility>(85, "void SetPointsVisibility(int id, VARIANT_BOOL visible)"),
        Row<&Surface::ImportPoints>(86, "int ImportPoints(int numPoints, VARIANT* xyz, VARIANT* colors, float alpha)"),
        Row<&Surface::GetScanSkipVal>(87, "short GetScanSkipVal()"),
        Row<&Surface::SetBlendObjectColors>(88, "void SetBlendObjectColors(short idx, short enabled)"),
        Row<&Surface::SetShadowColor>(89, "void SetShadowColor(float red, float green, float blue)"),
        Row<&Surface::ImportMeshedMeasurement>(90, "void ImportMeshedMeasurement(VARIANT* mesh, BSTR filename, long color)"),
        Row<&Surface::StartAnimation>(91, "void StartAnimation(float revolutionsPerSecond)"),
        Row<&Surface::StopAnimation>(92, "void StopAnimation()"),
        Row<&Surface::ToggleAnimationOnSpacebar>(93, "void ToggleAnimationOnSpacebar(long enabled)"),
        Row<&Surface::IsAnimationRunning>(94, "VARIANT_BOOL IsAnimationRunning()"),
        Row<&Surface::SetAnimationSpeed>(95, "void SetAnimationSpeed(float revolutionsPerSecond)"),
        Row<&Surface::SetPointCloudRenderPointSize>(96, "void SetPointCloudRenderPointSize(float size)"),
        Row<&Surface::CaptureScreenShot>(97, "void CaptureScreenShot(VARIANT* buffer)"),
        Row<&Surface::GetScreenShotResolution>(98, "void GetScreenShotResolution(long* width, long* height)"),
        Row<&Surface::AddOverlayData>(99, "int AddOverlayData(VARIANT* argbU8DataPtrHack, int width, int height, float relPosX, float relPosY, float relOffsetX, float relOffsetY, float absOffsetX, float absOffsetY)"),
        Row<&Surface::SetOverlayVisibility>(100, "void SetOverlayVisibility(int index, long enable)"),
        Row<&Surface::SetDefaultZoomFactor>(101, "void SetDefaultZoomFactor(float newDefault)"),
        Row<&Surface::SetClipPlaneEnabled>(102, "void SetClipPlaneEnabled(long displayClipPlane)"),
        Row<&Surface::SetClipPlaneDisabled>(103, "void SetClipPlaneDisabled()"),
        Row<&Surface::SetClipPlane>(104, "void SetClipPlane(float centerX, float centerY, float centerZ, float normalX, float normalY, float normalZ)"),
        Row<&Surface::SetClipPlaneColor>(105, "void SetClipPlaneColor(long color, long handleColor, long outlineColor)"),
        Row<&Surface::GetClipPlane>(106, "void GetClipPlane(float* centerX, float* centerY, float* centerZ, float* normalX, float* normalY, float* normalZ)"),
        Row<&Surface::SetNeedlePickingMode>(107, "void SetNeedlePickingMode(VARIANT_BOOL enable)"),
        Row<&Surface::SetNeedleDrawingMode>(108, "void SetNeedleDrawingMode(VARIANT_BOOL enable)"),
        Row<&Surface::SetNeedleRenderParameters>(109, "void SetNeedleRenderParameters(float needleLength, float needleHeadRadius, long needleHeadColor, float needlePinSize, long needlePinColor, float needleHitPointRadius, long needleHitPointColor, long needleHeadSelectionColor)"),
        Row<&Surface::GetNeedlePickingMode>(110, "VARIANT_BOOL GetNeedlePickingMode()"),
        Row<&Surface::GetNeedleDrawingMode>(111, "VARIANT_BOOL GetNeedleDrawingMode()"),
        Row<&Surface::DeleteNeedle>(112, "VARIANT_BOOL DeleteNeedle(int id)"),
        Row<&Surface::GetNumberOfNeedles>(113, "int GetNumberOfNeedles()"),
        Row<&Surface::GetNeedle>(114, "VARIANT_BOOL GetNeedle(int id, float* pinPosX, float* pinPosY, float* pinPosZ, float* headPosX, float* headPosY, float* headPosZ)"),
        Row<&Surface::GetNeedles>(115, "void GetNeedles(VARIANT* id, VARIANT* pinPosXYZ, VARIANT* headPosXYZ)"),
        Row<&Surface::ImportMeasurementFromMemory>(116, "void ImportMeasurementFromMemory(int width, int height, VARIANT* points, VARIANT* confidence, VARIANT* trafo, long color)"),
        Row<&Surface::ImportMeshFromMemory>(117, "void ImportMeshFromMemory(int numberOfVertices, int numberOfTriangles, VARIANT* vertices, VARIANT* triangles)"),
        Row<&Surface::GetCutMasks>(118, "VARIANT_BOOL GetCutMasks(int* count, VARIANT* cutMaskPtrs)"),
        Row<&Surface::ClearCutMasks>(119, "void ClearCutMasks()"),
        Row<&Surface::InitializeKVReg>(120, "void InitializeKVReg()"),
        Row<&Surface::FinalizeKVReg>(121, "void FinalizeKVReg()"),
        Row<&Surface::SetHpsSourceApp>(122, "void SetHpsSourceApp(BSTR appName, BSTR appVersion)"),
        Row<&Surface::AboutBox>(-552, "void AboutBox()"),
    };
    return methods;
}
// clang-format on

// Letter of the alternative that is held, in the order of AutomationValue.
char CodeOf(const AutomationValue& value) {
    constexpr std::string_view kCodes = "vsifwpl";
    return kCodes[value.index()];
}

}  // namespace

std::span<const AutomationMethod> AutomationMethods() { return Methods(); }

std::span<const AutomationProperty> AutomationProperties() {
    static const std::array<AutomationProperty, 4> properties{
        Property<&Surface::GetDrawMosaic, &Surface::SetDrawMosaic>(1, "VARIANT_BOOL", "DrawMosaic"),
        Property<&Surface::GetDrawMode, &Surface::SetDrawMode>(2, "short", "DrawMode"),
        Property<&Surface::GetMoveReduced, &Surface::SetMoveReduced>(3, "VARIANT_BOOL", "MoveReduced"),
        Property<&Surface::GetReadyState>(-525, "long", "ReadyState")};
    return properties;
}

std::span<const AutomationEvent> AutomationEvents() {
    // clang-format off
    static const std::vector<AutomationEvent> events{
        Event<&Events::ReadyStateChange>(-609, "void ReadyStateChange()"),
        Event<&Events::SelectViewDirection>(1, "void SelectViewDirection(float px, float py, float pz, float vx, float vy, float vz)"),
        Event<&Events::SelectObjCoords>(2, "void SelectObjCoords(short idx, float px, float py, float pz, int shiftModifiers, int mouseX, int mouseY)"),
        Event<&Events::SegmentationDone>(3, "void SegmentationDone(short numObj)"),
        Event<&Events::ViewDirectionChanged>(4, "void ViewDirectionChanged(float vx, float vy, float vz)"),
        Event<&Events::AlignmentDone>(5, "void AlignmentDone()"),
        Event<&Events::NeedleCreated>(6, "void NeedleCreated(int id)"),
        Event<&Events::NeedleSelected>(7, "void NeedleSelected(int id)"),
        Event<&Events::NeedleDeleted>(8, "void NeedleDeleted(int id)"),
        Event<&Events::NeedleDeselected>(9, "void NeedleDeselected(int id)"),
        Event<&Events::CustomKeyDown>(10, "void CustomKeyDown(long nChar, long nRepCnt, long nFlags)"),
        Event<&Events::PickPointCountChanged>(11, "void PickPointCountChanged(int newCount)"),
        Event<&Events::CutMaskApplied>(12, "void CutMaskApplied(int64 addr)"),
    };
    // clang-format on
    return events;
}

namespace {
const RowIndex<AutomationMethod>& MethodIndex() {
    static const RowIndex<AutomationMethod> index(AutomationMethods());
    return index;
}
const RowIndex<AutomationProperty>& PropertyIndex() {
    static const RowIndex<AutomationProperty> index(AutomationProperties());
    return index;
}
const RowIndex<AutomationEvent>& EventIndex() {
    static const RowIndex<AutomationEvent> index(AutomationEvents());
    return index;
}
}  // namespace

const AutomationMethod* FindMethod(std::int32_t id) { return MethodIndex().Find(id); }
const AutomationMethod* FindMethod(std::string_view name) { return MethodIndex().Find(name); }
const AutomationProperty* FindProperty(std::int32_t id) { return PropertyIndex().Find(id); }
const AutomationProperty* FindProperty(std::string_view name) { return PropertyIndex().Find(name); }
const AutomationEvent* FindEvent(std::int32_t id) { return EventIndex().Find(id); }
const AutomationEvent* FindEvent(std::string_view name) { return EventIndex().Find(name); }

AutomationStatus InvokeMethod(Surface& target, std::int32_t id, std::span<const AutomationValue> arguments,
                              AutomationValue* result) {
    const AutomationMethod* method = FindMethod(id);
    if (method == nullptr) return AutomationStatus::UnknownId;
    const std::string_view expected = method->signature.substr(1);
    if (!std::ranges::equal(arguments, expected, {}, CodeOf)) return AutomationStatus::BadArguments;
    const AutomationValue value = method->invoke(target, arguments);
    if (result != nullptr) *result = value;
    return AutomationStatus::Done;
}

// A scene for alignment by picked points, and an operator who clicks in it by the calls of a host. The camera looks
// down the z axis: 48 pixels per unit, with (0, 0) at pixel (320, 240).
#pragma once
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "align/CAlignPickPointsDlg.h"
#include "support/ControlFixture.h"

using Double16 = std::array<double, 16>;  ///< 4 x 4, row by row

struct PlateSpec {
    float x = 0, y = 0, z = 0;  ///< centre
    float half = 1.5f;          ///< of its side, in x and in y
    float slopeX = 0, slopeY = 0;
    std::uint32_t color = 0xFFFFFF;  ///< 0x00BBGGRR
};

/// A square in x and y whose z rises by the slopes; its front faces the camera.
inline std::shared_ptr<Mesh> MakeSlopedPlate(const PlateSpec& spec) {
    std::vector<Vertex> vertices;
    for (const auto& [x, y] : {std::pair{-1, -1}, {1, -1}, {1, 1}, {-1, 1}}) {
        const float dx = spec.half * static_cast<float>(x), dy = spec.half * static_cast<float>(y);
        vertices.push_back(
            {.x = spec.x + dx, .y = spec.y + dy, .z = spec.z + spec.slopeX * dx + spec.slopeY * dy, .nz = 1});
    }
    auto mesh = std::make_shared<Mesh>(std::move(vertices), std::vector<Triangle>{{{0, 1, 2}}, {{0, 2, 3}}},
                                       std::wstring(), false);
    mesh->SetColorRef(spec.color);
    return mesh;
}

/// 10 units fill the height of a window of 640 x 480.
inline void LookDownAtPlates(CKV_ScenePaneCtrl& control) {
    control.m_fAxisX = {1, 0, 0};
    control.m_fAxisY = {0, 1, 0};
    control.m_fAxisZ = {0, 0, 1};
    control.m_fViewCenter = control.m_fRotationCenter = {0, 0, 0};
    control.m_fSceneSize = 10;
    control.m_fZoom = 1;
    control.SetupViewMatrices();
}

/// Receives the events of a host: counts the ends of alignments, and runs a function in each.
class AlignHost final : public KV_ScenePane::_DKV_ScenePaneEvents {
public:
    std::function<void()> onDone = [] {};
    int done = 0;
    std::vector<std::string> others;  ///< the names of other events

    void AlignmentDone() override {
        ++done;
        onDone();
    }
    void NeedleDeleted(std::int32_t) override { others.emplace_back("NeedleDeleted"); }
    void SelectObjCoords(std::int16_t, float, float, float, std::int32_t, std::int32_t, std::int32_t) override {
        others.emplace_back("SelectObjCoords");
    }
};

// The objects of the scene.
inline constexpr std::int16_t kMovingPlate = 0, kFixedPlate = 1, kBackPlate = 2;
inline constexpr PlateSpec kMovingSpec{.x = -3, .z = 1, .color = 0x6090F0};
inline constexpr PlateSpec kFixedSpec{.x = 3, .z = -1, .color = 0x40C08F};
inline constexpr PlateSpec kBackSpec{.z = -3, .half = 4.9f, .color = 0xFF8001};

/// Three points of the moving plate, and where a quarter turn about the z axis and a shift by (3, 3, -2) takes them: to
/// the fixed plate. All are at whole pixels.
struct PixelPair {
    int movingX, movingY, fixedX, fixedY;
};
inline constexpr PixelPair kQuarterTurn[] = {{128, 288, 512, 288}, {200, 288, 512, 216}, {176, 192, 416, 240}};
inline constexpr Double16 kQuarterTurnTrafo = {0, -1, 0, 3, 1, 0, 0, 3, 0, 0, 1, -2, 0, 0, 0, 1};

inline void SetPickScene(CKV_ScenePaneCtrl& control) {
    for (const PlateSpec& spec : {kMovingSpec, kFixedSpec, kBackSpec})
        control.m_vpMeshes.push_back(MakeSlopedPlate(spec));
    LookDownAtPlates(control);
    control.ResetVariableObjects();
    control.AddVariableObject(kMovingPlate);
}

/// The scene in a viewer of 640 x 480, with a host.
struct PickControl : OffscreenControl {
    PickControl() : OffscreenControl(640, 480) {
        SetPickScene(*control);
        control->Connect(&host);
        control->PerformRefresh();
        window->Forget();
    }
    ~PickControl() {
        if (control != nullptr) control->Connect(nullptr);
    }
    PickControl(const PickControl&) = delete;
    PickControl& operator=(const PickControl&) = delete;

    using Kind = KV_ScenePane::MouseInput::Kind;
    void Mouse(Kind kind, int x, int y, std::uint32_t flags = 0) {
        control->SendMouse({.kind = kind, .flags = flags, .x = x, .y = y});
    }
    void Click(int x, int y) {
        Mouse(Kind::LeftDown, x, y, KV_ScenePane::kMouseLeft);
        Mouse(Kind::LeftUp, x, y);
    }
    void Type(std::int32_t key, std::int32_t nFlags = 0) { control->SendKey({.nChar = key, .nFlags = nFlags}); }
    void PickMoving(std::span<const PixelPair> pairs) {
        for (const PixelPair& pair : pairs) Click(pair.movingX, pair.movingY);
    }
    void PickFixed(std::span<const PixelPair> pairs) {
        for (const PixelPair& pair : pairs) Click(pair.fixedX, pair.fixedY);
    }
    /// Until the alignment ends by its last point.
    void AlignBy(std::span<const PixelPair> pairs) {
        control->AlignPickPoints();
        PickMoving(pairs);
        Type(KV_ScenePane::kKeySpace);
        PickFixed(pairs);
    }

    /// The open dialog, which must be one of this kind.
    [[nodiscard]] CAlignPickPointsDlg& Dialog() const {
        return dynamic_cast<CAlignPickPointsDlg&>(*control->m_pInteractionDlg);
    }
    [[nodiscard]] std::uint32_t Color(std::size_t object) const {
        return control->m_vpMeshes.at(object)->GetColorRef();
    }
    [[nodiscard]] std::vector<std::uint32_t> Colors() const {
        std::vector<std::uint32_t> colors;
        for (const auto& mesh : control->m_vpMeshes) colors.push_back(mesh->GetColorRef());
        return colors;
    }
    [[nodiscard]] Double16 Trafo(std::int16_t object) const {
        std::array<float, 16> v{};
        EXPECT_EQ(control->GetTrafoOfScan(object, &v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6], &v[7], &v[8], &v[9],
                                          &v[10], &v[11], &v[12], &v[13], &v[14], &v[15]),
                  0);
        Double16 trafo;
        std::copy(v.begin(), v.end(), trafo.begin());
        return trafo;
    }

    AlignHost host;
};

/// A third of each channel, rounded down.
constexpr std::uint32_t DimmedColor(std::uint32_t color) {
    return (color & 0xFF) / 3 | (color >> 8 & 0xFF) / 3 << 8 | (color >> 16 & 0xFF) / 3 << 16;
}

inline constexpr Double16 kIdentity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

inline Double16 Product(const Double16& a, const Double16& b) {
    Double16 c{};
    for (std::size_t row = 0; row < 4; ++row)
        for (std::size_t column = 0; column < 4; ++column)
            for (std::size_t k = 0; k < 4; ++k) c[4 * row + column] += a[4 * row + k] * b[4 * k + column];
    return c;
}
inline std::array<double, 3> Moved(const Double16& trafo, const std::array<double, 3>& p) {
    std::array<double, 3> moved{};
    for (std::size_t row = 0; row < 3; ++row)
        moved[row] = trafo[4 * row] * p[0] + trafo[4 * row + 1] * p[1] + trafo[4 * row + 2] * p[2] + trafo[4 * row + 3];
    return moved;
}
inline void ExpectTrafo(const Double16& found, const Double16& expected, double tolerance = 1e-5) {
    for (std::size_t i = 0; i < 16; ++i) EXPECT_NEAR(found[i], expected[i], tolerance) << "element " << i;
}

/// Every vertex of the mesh is where @p trafo takes that of the plate.
inline void ExpectPlateMovedBy(const Mesh& mesh, const PlateSpec& spec, const Double16& trafo) {
    const auto plate = MakeSlopedPlate(spec);
    ASSERT_EQ(mesh.GetVertexCount(), plate->GetVertexCount());
    for (std::size_t i = 0; i < mesh.GetVertexCount(); ++i) {
        const Vertex& was = plate->m_vVertices[i];
        const Vertex& is = mesh.m_vVertices[i];
        const auto expected = Moved(trafo, {was.x, was.y, was.z});
        EXPECT_NEAR(is.x, expected[0], 1e-5) << i;
        EXPECT_NEAR(is.y, expected[1], 1e-5) << i;
        EXPECT_NEAR(is.z, expected[2], 1e-5) << i;
    }
}

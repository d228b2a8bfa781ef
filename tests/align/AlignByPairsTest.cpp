// Alignment by pairs of points that the host passes: what moves, what is recorded, and what is left alone.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numbers>
#include <span>
#include <string>
#include <vector>

#include "KV_ScenePane/ScenePane.h"
#include "support/ControlFixture.h"
#include "support/RigidReference.h"

namespace {

using KV_ScenePane::AlignmentPair;
using KV_ScenePane::AlignmentPoint;
using reference::Motion;
using reference::Point;

AlignmentPoint PointOnly(const Point& p) {
    return {{static_cast<float>(p[0]), static_cast<float>(p[1]), static_cast<float>(p[2])}, {}};
}

/// Pairs of the corners of a tetrahedron with their places after a motion.
std::vector<AlignmentPair> PairsOf(const Motion& motion) {
    std::vector<AlignmentPair> pairs;
    for (const Point& p : {Point{0, 0, 0}, Point{40, 0, 0}, Point{0, 30, 0}, Point{0, 0, 20}})
        pairs.push_back({PointOnly(p), PointOnly(motion(p))});
    return pairs;
}

const std::vector<Vertex> kVertices = {
    {1, 2, 3, 1, 0, 0}, {10, 0, 0, 0, 1, 0}, {0, 15, 4, 0, 0, 1}, {-5, 2, 8, 0.6f, 0, 0.8f}};

Mesh& AddObject(CKV_ScenePaneCtrl& control) { return AddMesh(control, kVertices, {Triangle{{0, 1, 2}}}); }

Motion TrafoOfScan(CKV_ScenePaneCtrl& control, std::int16_t idx) {
    std::array<float, 16> m{};
    EXPECT_EQ(control.GetTrafoOfScan(idx, &m[0], &m[1], &m[2], &m[3], &m[4], &m[5], &m[6], &m[7], &m[8], &m[9], &m[10],
                                     &m[11], &m[12], &m[13], &m[14], &m[15]),
              0);
    Motion motion;
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) motion.rows[row][column] = m[4 * row + column];
        motion.t[row] = m[4 * row + 3];
    }
    return motion;
}

void SetTrafoOfScan(CKV_ScenePaneCtrl& control, std::int16_t idx, const Motion& m) {
    const auto f = [](double value) { return static_cast<float>(value); };
    EXPECT_EQ(control.SetTrafoOfScan(idx, f(m.rows[0][0]), f(m.rows[0][1]), f(m.rows[0][2]), f(m.t[0]),  //
                                     f(m.rows[1][0]), f(m.rows[1][1]), f(m.rows[1][2]), f(m.t[1]),       //
                                     f(m.rows[2][0]), f(m.rows[2][1]), f(m.rows[2][2]), f(m.t[2]), 0, 0, 0, 1),
              0);
}

/// Coordinates up to 100 with a few roundings to float on the way.
constexpr double kRounding = 8 * 0x1p-24 * 100;

void ExpectMoved(const Mesh& mesh, const Motion& motion) {
    ASSERT_EQ(mesh.m_vVertices.size(), kVertices.size());
    for (std::size_t i = 0; i < kVertices.size(); ++i) {
        const Vertex &was = kVertices[i], &is = mesh.m_vVertices[i];
        EXPECT_LE(Length(motion({was.x, was.y, was.z}) - Point{is.x, is.y, is.z}), kRounding) << i;
        EXPECT_LE(Length(motion.Turn({was.nx, was.ny, was.nz}) - Point{is.nx, is.ny, is.nz}), 1e-6) << i;
    }
}

void ExpectUnmoved(const Mesh& mesh) {
    for (std::size_t i = 0; i < kVertices.size(); ++i) {
        EXPECT_EQ(mesh.m_vVertices[i].x, kVertices[i].x);
        EXPECT_EQ(mesh.m_vVertices[i].y, kVertices[i].y);
        EXPECT_EQ(mesh.m_vVertices[i].z, kVertices[i].z);
    }
    EXPECT_EQ(mesh.m_Trafo.m_dQuat[0], 1);
    EXPECT_EQ(mesh.m_Trafo.m_dTranslation[0], 0);
}

void ExpectSameMotion(const Motion& motion, const Motion& expected) {
    EXPECT_LE(reference::AngleBetween(motion, expected), 1e-6);
    EXPECT_LE(Length(motion.t - expected.t), kRounding);
}

const Motion kMotion = reference::MotionAbout({1, 2, 3}, 0.7, {30, -20, 10});

TEST(AlignByPairs, MovesTheVariableObjectsAlone) {
    NoPictureControl control;
    const Mesh &first = AddObject(*control), &second = AddObject(*control), &third = AddObject(*control);
    control->AddVariableObject(0);
    control->AddVariableObject(2);
    EXPECT_TRUE(control->AlignByPairs(PairsOf(kMotion)));
    ExpectMoved(first, kMotion);
    ExpectUnmoved(second);
    ExpectMoved(third, kMotion);
    ExpectSameMotion(TrafoOfScan(*control, 0), kMotion);
    ExpectSameMotion(TrafoOfScan(*control, 1), Motion{});
}

TEST(AlignByPairs, AsksForARepaintShowsTheWaitCursorAndFiresNothing) {
    NoPictureControl control;
    AddObject(*control);
    control->AddVariableObject(0);
    control.window->Forget();
    ASSERT_TRUE(control->AlignByPairs(PairsOf(kMotion)));
    EXPECT_EQ(control.window->invalidates, 1);
    EXPECT_EQ(control.window->eraseInvalidates, 0);
    EXPECT_EQ(control.window->refreshes, 0);
    EXPECT_EQ(control.window->waitCursorsBegun, 1);
    EXPECT_EQ(control.window->waitCursorsEnded, 1);
    EXPECT_TRUE(control.events.events.empty());
}

TEST(AlignByPairs, KeepsTheTransformAndTheResiduals) {
    NoPictureControl control;
    AddObject(*control);
    control->AddVariableObject(0);
    auto pairs = PairsOf(kMotion);
    pairs[2].fixed.point[1] += 0.5f;
    ASSERT_TRUE(control->AlignByPairs(pairs));
    const KV_ScenePane::AlignmentResult& result = control->m_lastAlignment;
    EXPECT_TRUE(result.isFound);
    ASSERT_EQ(result.residuals.size(), 4u);
    Motion motion;
    double squares = 0;
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column)
            motion.rows[row][column] = result.transform[4 * row + column];
        motion.t[row] = result.transform[4 * row + 3];
    }
    for (std::size_t i = 0; i < 4; ++i) {
        const float *from = pairs[i].moving.point, *to = pairs[i].fixed.point;
        const double distance = Length(motion({from[0], from[1], from[2]}) - Point{to[0], to[1], to[2]});
        EXPECT_NEAR(result.residuals[i], distance, 1e-12);
        EXPECT_EQ(result.pairs[i].moving.point[0], from[0]);
        EXPECT_EQ(result.pairs[i].fixed.point[1], to[1]);
        squares += distance * distance;
    }
    EXPECT_GT(result.rms, 0.1) << "one of the points is half a unit away";
    EXPECT_NEAR(result.rms, std::sqrt(squares / 4), 1e-12);
    ExpectMoved(*control->m_vpMeshes[0], motion);
}

TEST(AlignByPairs, ASinglePairTurnsTheNormals) {
    NoPictureControl control;
    const Mesh& mesh = AddObject(*control);
    control->AddVariableObject(0);
    const AlignmentPair pair = {{{1, 2, 3}, {1, 0, 0}}, {{10, 20, 30}, {0, 1, 0}}};
    ASSERT_TRUE(control->AlignByPairs({&pair, 1}));
    // x to y about z: (1, 2, 3) becomes (-2, 1, 3), and then comes to (10, 20, 30).
    ExpectMoved(mesh, reference::MotionAbout({0, 0, 1}, std::numbers::pi / 2, {12, 19, 27}));
    EXPECT_NEAR(control->m_lastAlignment.residuals.at(0), 0, 1e-5);
}

TEST(AlignByPairs, AnObjectListedTwiceMovesTwice) {
    NoPictureControl control;
    const Mesh& mesh = AddObject(*control);
    control->AddVariableObject(0);
    control->AddVariableObject(0);
    ASSERT_TRUE(control->AlignByPairs(PairsOf(kMotion)));
    ExpectMoved(mesh, Compose(kMotion, kMotion));
    ExpectSameMotion(TrafoOfScan(*control, 0), Compose(kMotion, kMotion));
}

TEST(AlignByPairs, ObjectsWithTransformsKeepThemBelowTheNewOne) {
    NoPictureControl control;
    const Mesh &moving = AddObject(*control), &fixed = AddObject(*control);
    const Motion pose = reference::MotionAbout({3, -1, 2}, 2.1, {5, 40, -8});
    const Motion other = reference::MotionAbout({0, 1, 0}, -1.0, {-9, 3, 60});
    SetTrafoOfScan(*control, 0, pose);
    SetTrafoOfScan(*control, 1, other);
    control->AddVariableObject(0);
    ASSERT_TRUE(control->AlignByPairs(PairsOf(kMotion)));
    ExpectMoved(moving, Compose(kMotion, pose));
    ExpectSameMotion(TrafoOfScan(*control, 0), Compose(kMotion, pose));
    ExpectMoved(fixed, other);
    ExpectSameMotion(TrafoOfScan(*control, 1), other);
    // What is recorded leads back to where the object came from.
    SetTrafoOfScan(*control, 0, Motion{});
    ExpectMoved(moving, Motion{});
}

TEST(AlignByPairs, SkipsObjectsThatAreGone) {
    NoPictureControl control;
    AddObject(*control), AddObject(*control), AddObject(*control);
    for (const std::int16_t idx : {std::int16_t{0}, std::int16_t{1}, std::int16_t{2}}) control->AddVariableObject(idx);
    control->DeleteObject(1);
    ASSERT_EQ(control->m_vpMeshes.size(), 2u);
    EXPECT_TRUE(control->AlignByPairs(PairsOf(kMotion)));
    ExpectMoved(*control->m_vpMeshes[0], kMotion);
    ExpectMoved(*control->m_vpMeshes[1], kMotion);
    control->ClearData();
    EXPECT_TRUE(control->AlignByPairs(PairsOf(kMotion))) << "the transform does not depend on the objects";
}

// A cut has replaced the object; the old one comes back with the undo, as it was.
TEST(AlignByPairs, LeavesWhatOnlyTheUndoStackHolds) {
    NoPictureControl control;
    const Mesh& mesh = AddObject(*control);
    control->AddVariableObject(0);
    control->m_vUndoStack.push_back(control->m_vpMeshes);
    control->m_vpMeshes = {std::make_shared<Mesh>(std::wstring(), false)};
    EXPECT_TRUE(control->AlignByPairs(PairsOf(kMotion)));
    ExpectUnmoved(mesh);
}

TEST(AlignByPairs, WithoutVariableObjectsFindsTheTransform) {
    NoPictureControl control;
    const Mesh& mesh = AddObject(*control);
    EXPECT_TRUE(control->AlignByPairs(PairsOf(kMotion)));
    ExpectUnmoved(mesh);
    EXPECT_NEAR(control->m_lastAlignment.transform[3], 30, kRounding);
}

TEST(AlignByPairs, WithoutATransformMovesNothing) {
    const float infinity = std::numeric_limits<float>::infinity();
    const AlignmentPair good = {{{1, 2, 3}, {0, 0, 1}}, {{4, 5, 6}, {0, 0, 1}}};
    const AlignmentPair samePoint = {{{1, 2, 3}, {0, 0, 1}}, {{9, 9, 9}, {0, 0, 1}}};
    const AlignmentPair endless = {{{1, infinity, 3}, {0, 0, 1}}, {{4, 5, 6}, {0, 0, 1}}};
    for (const std::vector<AlignmentPair>& pairs :
         {std::vector<AlignmentPair>{}, {good, good}, {good, samePoint}, {good, endless}, {endless}}) {
        NoPictureControl control;
        const Mesh& mesh = AddObject(*control);
        control->AddVariableObject(0);
        ASSERT_TRUE(control->AlignByPairs({&good, 1}));
        const Vertex before = mesh.m_vVertices[0];
        control.window->Forget();
        EXPECT_FALSE(control->AlignByPairs(pairs));
        EXPECT_EQ(mesh.m_vVertices[0].x, before.x);
        EXPECT_EQ(mesh.m_vVertices[0].y, before.y);
        EXPECT_EQ(control.window->invalidates, 0) << "nothing has changed in the picture";
        EXPECT_EQ(control.window->waitCursorsBegun, control.window->waitCursorsEnded);
        EXPECT_FALSE(control->m_lastAlignment.isFound);
        EXPECT_EQ(control->m_lastAlignment.pairs.size(), pairs.size());
        EXPECT_TRUE(control->m_lastAlignment.residuals.empty());
        EXPECT_EQ(control->m_lastAlignment.transform[3], 0) << "not that of the alignment before";
    }
}

TEST(AlignByPairs, LeavesARunningAlignmentOpen) {
    NoPictureControl control;
    const Mesh& mesh = AddObject(*control);
    control->AddVariableObject(0);
    control->AlignPickPoints();
    CInteractionDlg* const dialog = control->m_pInteractionDlg;
    ASSERT_NE(dialog, nullptr);
    EXPECT_TRUE(control->AlignByPairs(PairsOf(kMotion)));
    ExpectMoved(mesh, kMotion);
    EXPECT_EQ(control->m_pInteractionDlg, dialog);
    EXPECT_EQ(control->m_nInteractionMode, ModeAlignPickPoints);
    EXPECT_TRUE(control.events.events.empty());
    control->FinishInteraction();
}

TEST(AlignByPairs, WorksForAHostWithoutADisplay) {
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::NoPicture;
    std::string reason;
    const auto pane = KV_ScenePane::CreateScenePane(request, &reason);
    ASSERT_TRUE(pane) << reason;
    const float vertices[] = {0, 0, 0, 10, 0, 0, 0, 10, 0};
    const std::int32_t triangle[] = {0, 1, 2};
    pane->Methods().ImportMeshFromMemory(3, 1, vertices, triangle);
    pane->Methods().AddVariableObject(0);
    EXPECT_TRUE(pane->AlignByPairs(PairsOf(kMotion)));
    EXPECT_TRUE(pane->GetAlignmentResult().isFound);
    float x = 0, y = 0, z = 0;
    EXPECT_TRUE(pane->Methods().GetObjectCenter(0, &x, &y, &z));
    EXPECT_LE(Length(kMotion({10.0 / 3, 10.0 / 3, 0}) - Point{x, y, z}), kRounding);
    EXPECT_FALSE(pane->AlignByPairs({}));
    EXPECT_FALSE(pane->GetAlignmentResult().isFound);
}

}  // namespace

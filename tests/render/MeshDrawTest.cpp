// The GPU buffers of a mesh: content, and when they are built, rebuilt and deleted.
#include <cstring>

#include "render/MeshTexture.h"
#include "render/SceneFixture.h"
#include "render/VertexPacking.h"

namespace {

class MeshBuffersOnTheGpu : public SceneTest {
protected:
    static std::vector<std::uint8_t> Content(GLenum target, GLuint buffer) {
        GLint size = 0;
        glBindBuffer(target, buffer);
        glGetBufferParameteriv(target, GL_BUFFER_SIZE, &size);
        std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
        glGetBufferSubData(target, 0, size, bytes.data());
        glBindBuffer(target, 0);
        return bytes;
    }
    static std::vector<std::uint32_t> Indices(GLuint buffer) {
        const std::vector<std::uint8_t> bytes = Content(GL_ELEMENT_ARRAY_BUFFER, buffer);
        std::vector<std::uint32_t> indices(bytes.size() / 4);
        std::memcpy(indices.data(), bytes.data(), bytes.size());
        return indices;
    }
    /// A fan whose triangle i has the corners (100 + i, i, i + 1).
    static std::shared_ptr<Mesh> Fan(int triangleCount, bool hasColors) {
        std::vector<Vertex> vertices;
        std::vector<Triangle> triangles;
        for (int i = 0; i < triangleCount + 100; ++i)
            vertices.push_back(
                MakeVertex({0.001 * i, 0.002 * i, 0.5}, {0, 0, 1}, 0xFF000000 + static_cast<std::uint32_t>(i)));
        for (int i = 0; i < triangleCount; ++i) triangles.push_back({{100 + i, i, i + 1}});
        return std::make_shared<Mesh>(std::move(vertices), std::move(triangles), std::wstring(), hasColors);
    }
    void DrawNow(Mesh& mesh, int mode = KV_ScenePane::DrawModeGouraud, bool reduced = false) {
        ASSERT_TRUE(pane->MakeContextCurrent());
        mesh.Draw(mode, reduced);
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
        EXPECT_EQ(Get(GL_ATTRIB_STACK_DEPTH), 0);
    }
};

TEST_F(MeshBuffersOnTheGpu, HoldThePackedVerticesAndThreeKindsOfIndices) {
    const auto mesh = Fan(25, false);
    EXPECT_TRUE(mesh->m_bBuffersDirty);
    DrawNow(*mesh);
    EXPECT_FALSE(mesh->m_bBuffersDirty);
    const auto vertices = Content(GL_ARRAY_BUFFER, mesh->m_uVertexBuffer);
    ASSERT_EQ(vertices.size(), 125u * 24);
    for (std::size_t i = 0; i < 125; ++i) EXPECT_EQ(std::memcmp(&vertices[24 * i], &mesh->m_vVertices[i], 24), 0);

    const auto corners = Indices(mesh->m_uTriangleBuffer);
    ASSERT_EQ(corners.size(), 75u);
    EXPECT_EQ((std::vector<std::uint32_t>(corners.begin() + 3, corners.begin() + 6)),
              (std::vector<std::uint32_t>{101, 1, 2}));
    const auto points = Indices(mesh->m_uPointBuffer);
    ASSERT_EQ(points.size(), 25u);
    EXPECT_EQ(points[24], 124u);
    EXPECT_EQ(Indices(mesh->m_uReducedBuffer), (std::vector<std::uint32_t>{100, 110, 120}));
    mesh->ReleaseBuffers();
}

TEST_F(MeshBuffersOnTheGpu, AreTheTrianglesOfTheMeshItselfWhereTheProcessorDraws) {
    ASSERT_TRUE(pane->MakeContextCurrent());
    if (!GLEW_AMD_pinned_memory ||
        !std::string(reinterpret_cast<const char*>(glGetString(GL_RENDERER))).starts_with("llvmpipe"))
        GTEST_SKIP() << "this driver copies";
    const auto mesh = Fan(25, false);
    for (int draw = 0; draw < 2; ++draw) {  // the second one uploads again
        DrawNow(*mesh);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, mesh->m_uTriangleBuffer);
        EXPECT_EQ(glMapBuffer(GL_ELEMENT_ARRAY_BUFFER, GL_READ_ONLY), mesh->m_vTriangles.data());
        glUnmapBuffer(GL_ELEMENT_ARRAY_BUFFER);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
        mesh->MarkBuffersDirty();
    }
    mesh->ReleaseBuffers();
}

TEST_F(MeshBuffersOnTheGpu, HoldTheBlendedColoursOfAColouredMesh) {
    const auto mesh = Fan(3, true);
    mesh->m_vVertices[7].color = 0x00FFFFFF;
    mesh->m_fColor[1] = mesh->m_fColor[2] = 0.0f;
    mesh->SetBlendColors(true);
    DrawNow(*mesh);
    const auto bytes = Content(GL_ARRAY_BUFFER, mesh->m_uVertexBuffer);
    ASSERT_EQ(bytes.size(), 103u * 28);
    const auto color = bytes.begin() + 7 * 28 + 24;
    EXPECT_EQ((std::vector<std::uint8_t>(color, color + 4)), (std::vector<std::uint8_t>{255, 38, 38, 255}));
    mesh->ReleaseBuffers();
}

// The upload works in pieces of 256 KiB: 1.7 MB of vertices and 280 KB of indices need several.
TEST_F(MeshBuffersOnTheGpu, HoldAllOfAMeshUploadedInSeveralPieces) {
    const auto mesh = Fan(70'000, false);
    DrawNow(*mesh);
    const auto vertices = Content(GL_ARRAY_BUFFER, mesh->m_uVertexBuffer);
    ASSERT_EQ(vertices.size(), 70'100u * 24);
    std::size_t wrong = 0;
    for (std::size_t i = 0; i < 70'100; ++i)
        wrong += std::memcmp(&vertices[24 * i], &mesh->m_vVertices[i], 24) != 0 ? 1 : 0;
    EXPECT_EQ(wrong, 0u);
    const auto points = Indices(mesh->m_uPointBuffer);
    ASSERT_EQ(points.size(), 70'000u);
    for (std::uint32_t i = 0; i < 70'000; ++i) wrong += points[i] != 100 + i ? 1 : 0;
    const auto reduced = Indices(mesh->m_uReducedBuffer);
    ASSERT_EQ(reduced.size(), 7'000u);
    for (std::uint32_t i = 0; i < 7'000; ++i) wrong += reduced[i] != 100 + 10 * i ? 1 : 0;
    EXPECT_EQ(wrong, 0u);
    mesh->ReleaseBuffers();
}

TEST_F(MeshBuffersOnTheGpu, KeepTheirNamesAndShrinkWhenRebuilt) {
    const auto mesh = Fan(25, false);
    DrawNow(*mesh);
    const GLuint names[] = {mesh->m_uVertexBuffer, mesh->m_uTriangleBuffer, mesh->m_uPointBuffer,
                            mesh->m_uReducedBuffer};
    mesh->m_vTriangles.resize(5);
    mesh->MarkBuffersDirty();
    DrawNow(*mesh);
    EXPECT_EQ(mesh->m_uVertexBuffer, names[0]);
    EXPECT_EQ(mesh->m_uTriangleBuffer, names[1]);
    EXPECT_EQ(mesh->m_uPointBuffer, names[2]);
    EXPECT_EQ(mesh->m_uReducedBuffer, names[3]);
    EXPECT_EQ(Indices(names[1]).size(), 15u);
    EXPECT_EQ(Indices(names[3]), (std::vector<std::uint32_t>{100}));
    mesh->ReleaseBuffers();
}

TEST_F(MeshBuffersOnTheGpu, AreNotRebuiltWhileClean) {
    const auto mesh = Fan(5, false);
    DrawNow(*mesh);
    mesh->m_vVertices[0].x = 77.0f;  // not marked dirty: must not be uploaded
    DrawNow(*mesh);
    float x = 0.0f;
    std::memcpy(&x, Content(GL_ARRAY_BUFFER, mesh->m_uVertexBuffer).data(), 4);
    EXPECT_EQ(x, 0.0f);
    mesh->MarkBuffersDirty();
    DrawNow(*mesh);
    std::memcpy(&x, Content(GL_ARRAY_BUFFER, mesh->m_uVertexBuffer).data(), 4);
    EXPECT_EQ(x, 77.0f);
    mesh->ReleaseBuffers();
}

TEST_F(MeshBuffersOnTheGpu, BecomeDirtyOnlyWhenTheBlendFlagChanges) {
    const auto mesh = Fan(5, true);
    DrawNow(*mesh);
    mesh->SetBlendColors(false);
    EXPECT_FALSE(mesh->m_bBuffersDirty);
    mesh->SetBlendColors(true);
    EXPECT_TRUE(mesh->m_bBuffersDirty);
    DrawNow(*mesh);
    mesh->SetBlendColors(true);
    EXPECT_FALSE(mesh->m_bBuffersDirty);
    mesh->ReleaseBuffers();
}

TEST_F(MeshBuffersOnTheGpu, AreBuiltInEveryDrawMode) {
    using namespace KV_ScenePane;
    for (const DrawMode mode :
         {DrawModePoints, DrawModeWireframe, DrawModeFlat, DrawModeGouraud, DrawModeBoundingBoxes, DrawModeNothing}) {
        const auto mesh = Fan(5, false);
        DrawNow(*mesh, mode);
        EXPECT_FALSE(mesh->m_bBuffersDirty) << mode;
        EXPECT_NE(mesh->m_uVertexBuffer, 0u) << mode;
        mesh->ReleaseBuffers();
    }
}

TEST_F(MeshBuffersOnTheGpu, AreNotBuiltWithoutTriangles) {
    Mesh mesh(Square{}.Vertices(), {}, L"", false);
    for (int mode = -1; mode < 8; ++mode) {
        mesh.MarkBuffersDirty();
        DrawNow(mesh, mode, mode % 2 == 0);
        EXPECT_FALSE(mesh.m_bBuffersDirty);
        EXPECT_EQ(mesh.m_uVertexBuffer, 0u);
    }
}

TEST_F(MeshBuffersOnTheGpu, AreDeletedWithTheMesh) {
    GLuint names[4] = {};
    {
        const auto mesh = Fan(5, false);
        DrawNow(*mesh);
        names[0] = mesh->m_uVertexBuffer, names[1] = mesh->m_uTriangleBuffer;
        names[2] = mesh->m_uPointBuffer, names[3] = mesh->m_uReducedBuffer;
        for (const GLuint name : names) EXPECT_EQ(glIsBuffer(name), GL_TRUE);
    }
    for (const GLuint name : names) EXPECT_EQ(glIsBuffer(name), GL_FALSE);
}

TEST_F(MeshBuffersOnTheGpu, AreBuiltAgainAfterARelease) {
    const auto mesh = Fan(5, false);
    DrawNow(*mesh);
    mesh->ReleaseBuffers();
    EXPECT_EQ(mesh->m_uVertexBuffer + mesh->m_uTriangleBuffer + mesh->m_uPointBuffer + mesh->m_uReducedBuffer, 0u);
    mesh->MarkBuffersDirty();
    DrawNow(*mesh);
    EXPECT_EQ(Indices(mesh->m_uTriangleBuffer).size(), 15u);
    mesh->ReleaseBuffers();
}

// ---- buffers of an object that moves

CACADQTrafo QuarterAboutZ() {
    CACADQTrafo trafo;
    trafo.Set(0, 1, 0, -1, 0, 0, 0, 0, 1, 10, 20, 30);
    return trafo;
}

class MeshBuffersOfAMovedObject : public MeshBuffersOnTheGpu {
protected:
    /// Each corner with a texture coordinate of its own.
    void MakeTextured(Mesh& mesh) {
        for (std::size_t i = 0; i < 3 * mesh.GetTriangleCount(); ++i)
            mesh.m_vTexCoords.push_back({static_cast<float>(i), 0.5f});
        ASSERT_TRUE(pane->MakeContextCurrent());
        const std::vector<std::uint8_t> pixel{1, 2, 3, 4};
        CreateTexture(mesh, 1, 1, pixel.data(), {});
    }
    /// Whether the buffers hold what a mesh with the same vertices and triangles uploads at its first draw.
    void ExpectBuffersOfANewMesh(const Mesh& mesh) {
        Mesh fresh(std::vector<Vertex>(mesh.m_vVertices), std::vector<Triangle>(mesh.m_vTriangles), L"",
                   mesh.m_bHasVertexColors);
        fresh.m_vTexCoords = mesh.m_vTexCoords;
        fresh.m_pTexture = mesh.m_pTexture;
        DrawNow(fresh);
        EXPECT_TRUE(Content(GL_ARRAY_BUFFER, mesh.m_uVertexBuffer) == Content(GL_ARRAY_BUFFER, fresh.m_uVertexBuffer));
        if (mesh.m_pTexture) return;
        EXPECT_TRUE(Indices(mesh.m_uTriangleBuffer) == Indices(fresh.m_uTriangleBuffer));
        EXPECT_TRUE(Indices(mesh.m_uPointBuffer) == Indices(fresh.m_uPointBuffer));
        EXPECT_TRUE(Indices(mesh.m_uReducedBuffer) == Indices(fresh.m_uReducedBuffer));
    }
};

TEST_F(MeshBuffersOfAMovedObject, HoldItsNewVerticesInEveryLayout) {
    for (const char* const layout : {"plain", "coloured", "textured"}) {
        SCOPED_TRACE(layout);
        const auto mesh = Fan(20'000, *layout == 'c');  // several pieces
        if (*layout == 't') MakeTextured(*mesh);
        DrawNow(*mesh);
        const auto before = Content(GL_ARRAY_BUFFER, mesh->m_uVertexBuffer);
        for (int step = 0; step < 3; ++step) {
            mesh->ApplyTrafo(QuarterAboutZ());
            DrawNow(*mesh);
            EXPECT_FALSE(mesh->m_bBuffersDirty);
            ExpectBuffersOfANewMesh(*mesh);
        }
        EXPECT_FALSE(Content(GL_ARRAY_BUFFER, mesh->m_uVertexBuffer) == before);
    }
}

TEST_F(MeshBuffersOfAMovedObject, KeepTheirIndices) {
    const auto mesh = Fan(25, false);
    DrawNow(*mesh);
    const auto points = Indices(mesh->m_uPointBuffer);
    for (Triangle& triangle : mesh->m_vTriangles) std::swap(triangle.v[0], triangle.v[1]);  // not marked dirty
    mesh->ApplyTrafo(QuarterAboutZ());
    DrawNow(*mesh);
    EXPECT_EQ(Indices(mesh->m_uPointBuffer), points);
    mesh->MarkBuffersDirty();
    mesh->ApplyTrafo(QuarterAboutZ());
    DrawNow(*mesh);
    ExpectBuffersOfANewMesh(*mesh);
    EXPECT_NE(Indices(mesh->m_uPointBuffer), points);
}

TEST_F(MeshBuffersOfAMovedObject, AreAllBuiltWhenItMovedBeforeItsFirstDrawOrAfterARelease) {
    const auto mesh = Fan(25, false);
    for (int round = 0; round < 2; ++round) {
        mesh->ApplyTrafo(QuarterAboutZ());
        DrawNow(*mesh);
        ExpectBuffersOfANewMesh(*mesh);
        mesh->ReleaseBuffers();
    }
}

TEST_F(MeshBuffersOfAMovedObject, AreAllBuiltInANewContext) {
    const auto mesh = Fan(25, true);
    DrawNow(*mesh);
    mesh->ReleaseBuffers();
    pane->RecreateOpenglContext(3, 3, 0);
    mesh->ApplyTrafo(QuarterAboutZ());
    DrawNow(*mesh);
    ExpectBuffersOfANewMesh(*mesh);
    mesh->ReleaseBuffers();
}

TEST_F(MeshBuffersOfAMovedObject, FollowTheNumberAndTheLayoutOfTheVertices) {
    const auto mesh = Fan(25, false);
    DrawNow(*mesh);
    mesh->m_vVertices.resize(200);
    mesh->ApplyTrafo(QuarterAboutZ());
    DrawNow(*mesh);
    ExpectBuffersOfANewMesh(*mesh);
    mesh->m_bHasVertexColors = true;
    mesh->MarkVerticesDirty();
    DrawNow(*mesh);
    ExpectBuffersOfANewMesh(*mesh);
    MakeTextured(*mesh);
    mesh->MarkVerticesDirty();
    DrawNow(*mesh);
    ExpectBuffersOfANewMesh(*mesh);
}

TEST_F(MeshBuffersOfAMovedObject, AreNotThoseOfItsCutClone) {
    const auto mesh = Fan(25, false);
    DrawNow(*mesh);
    const std::uint32_t removed[4] = {0xFF};
    const auto clone = mesh->CloneWithoutVertices(removed);
    ASSERT_LT(clone->GetTriangleCount(), mesh->GetTriangleCount());
    for (int step = 0; step < 2; ++step) {
        clone->ApplyTrafo(QuarterAboutZ());
        DrawNow(*clone);
        ExpectBuffersOfANewMesh(*clone);
        ExpectBuffersOfANewMesh(*mesh);
        mesh->ApplyTrafo(QuarterAboutZ());
        DrawNow(*mesh);
    }
    EXPECT_NE(clone->m_uVertexBuffer, mesh->m_uVertexBuffer);
}

// ---- state and layouts

// Without the current colour: Mesa 22.3 does not restore it at the second of two sequences of glPushAttrib(), glColor()
// and glPopAttrib().
TEST_F(MeshBuffersOnTheGpu, AreDrawnWithoutChangingTheOpenGlState) {
    const auto mesh = Fan(5, true);
    DrawNow(*mesh, -1);
    EXPECT_EQ(Get(GL_ELEMENT_ARRAY_BUFFER_BINDING), static_cast<GLint>(mesh->m_uReducedBuffer)) << "the last one built";
    glPointSize(7.0f);
    for (int mode = 0; mode < 8; ++mode) {
        DrawNow(*mesh, mode, mode % 2 == 0);
        GLfloat pointSize = 0.0f;
        glGetFloatv(GL_POINT_SIZE, &pointSize);
        EXPECT_EQ(pointSize, 7.0f);
        EXPECT_EQ(Get(GL_SHADE_MODEL), GL_SMOOTH);
        EXPECT_EQ(Get(GL_POLYGON_MODE), GL_FILL);
        for (const GLenum state : {GL_LIGHTING, GL_LIGHT0, GL_DEPTH_TEST, GL_VERTEX_ARRAY, GL_NORMAL_ARRAY,
                                   GL_COLOR_ARRAY, GL_TEXTURE_COORD_ARRAY})
            EXPECT_EQ(glIsEnabled(state), GL_FALSE) << state;
        if (mode < KV_ScenePane::DrawModeBoundingBoxes) {  // the modes that draw buffers
            EXPECT_EQ(Get(GL_ARRAY_BUFFER_BINDING), 0);
            EXPECT_EQ(Get(GL_ELEMENT_ARRAY_BUFFER_BINDING), 0);
        }
    }
    mesh->ReleaseBuffers();
}

TEST_F(MeshBuffersOnTheGpu, HoldEachCornerOfATexturedMeshWithItsCoordinate) {
    ASSERT_TRUE(pane->MakeContextCurrent());
    auto mesh = Fan(2, true);  // the texture replaces the vertex colours
    mesh->m_vTexCoords = {{0, 0.1f}, {1, 0.2f}, {2, 0.3f}, {3, 0.4f}, {4, 0.5f}, {5, 0.6f}};
    const std::vector<std::uint8_t> pixel{1, 2, 3, 4}, image{9, 8, 7};
    CreateTexture(*mesh, 1, 1, pixel.data(), image);
    EXPECT_EQ(mesh->m_pTexture->m_hContext, pane->m_hRC);
    EXPECT_EQ(mesh->m_pTexture->m_vImageBytes, image);
    DrawNow(*mesh);
    const auto bytes = Content(GL_ARRAY_BUFFER, mesh->m_uVertexBuffer);
    ASSERT_EQ(bytes.size(), 6u * 32);
    const int corners[] = {100, 0, 1, 101, 1, 2};
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(std::memcmp(&bytes[32 * i], &mesh->m_vVertices[static_cast<std::size_t>(corners[i])], 24), 0);
        EXPECT_EQ(std::memcmp(&bytes[32 * i + 24], &mesh->m_vTexCoords[i], 8), 0);
    }
    const GLuint texture = mesh->m_pTexture->m_uName;
    EXPECT_EQ(glIsTexture(texture), GL_TRUE);
    glBindTexture(GL_TEXTURE_2D, texture);
    GLint filter = 0;
    glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, &filter);
    EXPECT_EQ(filter, GL_LINEAR_MIPMAP_LINEAR);
    glBindTexture(GL_TEXTURE_2D, 0);
    mesh.reset();
    EXPECT_EQ(glIsTexture(texture), GL_FALSE);
}

}  // namespace

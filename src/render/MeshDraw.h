// Meshes on the screen: the OpenGL side of Mesh::Draw(), Mesh::ReleaseBuffers() and Mesh::Texture. The buffers are in
// MeshBuffers.h.
#pragma once
#include <array>
#include <cstdint>
#include <memory>
#include <span>

class Mesh;

/// Makes every mesh of the process draw and release its buffers by OpenGL. Any thread; needs no context, costs nothing
/// when repeated. Every control does it; a program that draws meshes without a control must call it first.
void InstallMeshDrawing();

/// While it lives, the meshes that its thread draws by Mesh::Draw() share their OpenGL state: only what differs from
/// the mesh before is set, and the attributes are pushed and popped once. Pictures are the same as without it, and
/// after its end the OpenGL state, too. Between two draws only the program and its uniforms may be changed. The context
/// must be current as long as it lives.
class MeshBatch {
public:
    MeshBatch();
    ~MeshBatch();
    MeshBatch(const MeshBatch&) = delete;
    MeshBatch& operator=(const MeshBatch&) = delete;

private:
    /// Meshes in a row that share all attributes but point size, tint and colours.
    struct Run {
        std::int32_t mode = -1;  ///< -1 for none
        bool isTextured = false;
        bool operator==(const Run&) const = default;
    };

    /// The installed drawing code: draws in the batch of this thread, or in one of its own.
    static void DrawMesh(Mesh& mesh, std::int32_t mode, bool reduced);
    friend void InstallMeshDrawing();

    void Draw(Mesh& mesh, std::int32_t mode, bool reduced);
    void DrawLit(const Mesh& mesh, std::int32_t mode, std::uint32_t indexBuffer, std::uint32_t primitive,
                 std::int32_t count);
    void SetRun(const Run& run);
    void Begin(const Run& run);
    void End();
    void SetPointSize(const Mesh& mesh);
    void SetTint(const Mesh& mesh);
    void SetColored(bool colored);

    MeshBatch* const m_outer;  ///< of this thread until the end of this one
    // What is set since Begin(). Before it and after End() OpenGL is as the caller left it.
    Run m_run;
    float m_pointSize = 0.0f;       ///< 0: as the caller left it
    std::array<float, 4> m_tint{};  ///< diffuse colour of the light, when m_hasTint is set
    bool m_hasTint = false;
    bool m_isColored = false;  ///< the client array of colours is enabled
    bool m_isWhite = false;    ///< the current colour is white
};

/// Draws the visible meshes in one batch.
/// @param mode  draw mode, any value of the host
void DrawVisible(std::span<const std::shared_ptr<Mesh>> meshes, std::int32_t mode, bool reduced);

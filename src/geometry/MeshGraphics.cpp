// The members of Mesh that need a graphics library, as calls to the drawing code that was installed.
#include "geometry/MeshGraphics.h"

#include <atomic>
#include <utility>

#include "geometry/Mesh.h"

namespace {

// Atomic: a control may be made in one thread while meshes of another control are imported and dropped in others.
std::atomic<const MeshGraphics*> g_meshGraphics = nullptr;

const MeshGraphics* InstalledGraphics() { return g_meshGraphics.load(std::memory_order_acquire); }

}  // namespace

const MeshGraphics* InstallMeshGraphics(const MeshGraphics* graphics) {
    return g_meshGraphics.exchange(graphics, std::memory_order_acq_rel);
}

void Mesh::Draw(std::int32_t mode, bool reduced) {
    if (const MeshGraphics* graphics = InstalledGraphics()) graphics->draw(*this, mode, reduced);
}

void Mesh::ReleaseBuffers() {
    if (const MeshGraphics* graphics = InstalledGraphics()) graphics->releaseBuffers(*this);
}

Mesh::Texture::Texture(std::uint32_t name, void* context, std::vector<std::uint8_t> imageBytes)
    : m_uName(name), m_hContext(context), m_vImageBytes(std::move(imageBytes)) {}

Mesh::Texture::~Texture() {
    if (m_uName == 0) return;
    if (const MeshGraphics* graphics = InstalledGraphics()) graphics->deleteTexture(m_uName);
}

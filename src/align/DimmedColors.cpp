// The vertices are uploaded again after each change: colours of vertices that are tinted are mixed at the upload.
#include "align/DimmedColors.h"

#include <algorithm>
#include <utility>

namespace {

std::uint32_t Dimmed(std::uint32_t color) {
    std::uint32_t dimmed = 0;
    for (const int shift : {0, 8, 16}) dimmed |= ((color >> shift & 0xFF) / 3) << shift;
    return dimmed;
}

void SetColor(Mesh& mesh, std::uint32_t color) {
    mesh.SetColorRef(color);
    mesh.MarkVerticesDirty();
}

}  // namespace

void DimmedColors::Dim(const std::shared_ptr<Mesh>& mesh) {
    if (Find(*mesh) != nullptr) return;
    const std::uint32_t color = mesh->GetColorRef();
    m_vSavedColors.push_back({mesh, color});
    SetColor(*mesh, Dimmed(color));
}

void DimmedColors::AddCopy(const Mesh& original, const std::shared_ptr<Mesh>& copy) {
    if (const SavedColor* const saved = Find(original)) m_vSavedColors.push_back({copy, saved->color});
}

void DimmedColors::Restore() {
    for (const SavedColor& saved : std::exchange(m_vSavedColors, {}))
        if (const auto mesh = saved.mesh.lock()) SetColor(*mesh, saved.color);
}

const DimmedColors::SavedColor* DimmedColors::Find(const Mesh& mesh) const {
    const auto found =
        std::ranges::find_if(m_vSavedColors, [&](const SavedColor& saved) { return saved.mesh.lock().get() == &mesh; });
    return found == m_vSavedColors.end() ? nullptr : &*found;
}

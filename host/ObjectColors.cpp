// The palette and its rules are in ObjectPalette.h.
#include "ObjectColors.h"

#include <algorithm>
#include <array>

#include "ObjectList.h"
#include "ObjectPalette.h"

ObjectColors::ObjectColors(ObjectList& objects, QObject* parent) : QObject(parent), m_objects(objects) {}

void ObjectColors::AddImported(ObjectReport object, bool tellsApart) {
    if (m_pViewer == nullptr) return;
    const bool isScanApart = IsPlainScan(object) && (tellsApart || m_bByObject);
    const std::int32_t own = IsPlainMesh(object) ? kMeshColor : object.color;
    object.color = isScanApart ? FreeColor() : own;
    m_pViewer->Methods().SetObjectColor(static_cast<std::int16_t>(object.index), object.color);
    m_objects.AddObject(object);
    m_own[m_objects.IdOf(object.index)] = own;
    if (isScanApart) m_bByObject = true;
}

void ObjectColors::Choose(int index, std::int32_t packed) {
    m_own[m_objects.IdOf(index)] = packed;
    Show(index, packed);
}

void ObjectColors::ColorByObject() {
    std::size_t position = 0;
    for (const int index : m_objects.PresentObjects()) {
        if (!m_objects.HasVertexColors(index)) Show(index, PaletteColor(position++));
    }
    m_bByObject = true;
}

void ObjectColors::ColorAsImported() {
    for (const int index : m_objects.PresentObjects()) {
        const auto own = m_own.find(m_objects.IdOf(index));
        if (own != m_own.end()) Show(index, own->second);
    }
    m_bByObject = false;
}

void ObjectColors::OnSceneCleared() {
    m_own.clear();
    m_bByObject = false;
}

void ObjectColors::Show(int index, std::int32_t packed) {
    if (m_pViewer == nullptr) return;
    m_pViewer->Methods().SetObjectColor(static_cast<std::int16_t>(index), packed);
    m_objects.ShowColor(index, packed);
}

std::int32_t ObjectColors::FreeColor() const {
    std::array<int, kPaletteSize> uses{};
    for (const int index : m_objects.PresentObjects()) {
        const auto* const color = std::ranges::find(kPalette, m_objects.ColorOf(index));
        if (color != kPalette.end()) ++uses[static_cast<std::size_t>(color - kPalette.begin())];
    }
    return kPalette[static_cast<std::size_t>(std::ranges::min_element(uses) - uses.begin())];
}

// The viewer draws the boxes of the objects in its selection. It keeps plain pointers to them, so the selection is made
// anew whenever the list or the scene has changed. The maths of Centre() is in ObjectCentring.h.
#include "ObjectCommands.h"

#include <algorithm>
#include <utility>

#include "ObjectCentring.h"
#include "ObjectList.h"

ObjectCommands::ObjectCommands(ObjectList& objects, QObject* parent) : QObject(parent), m_objects(objects) {
    connect(&objects, &ObjectList::itemSelectionChanged, this, &ObjectCommands::FollowSelection);
    // A deletion empties the selection of the viewer, and leaves that of the other rows.
    connect(&objects, &ObjectList::CountsChanged, this, &ObjectCommands::FollowSelection);
}

void ObjectCommands::SetViewer(KV_ScenePane::ScenePane* viewer) {
    m_pViewer = viewer;
    m_vOutlined.clear();
    FollowSelection();
}

// ---- visibility

void ObjectCommands::ShowSelected() {
    const std::vector<int> selected = m_objects.SelectedObjects();
    SetVisible([&](int index) { return !m_objects.IsHidden(index) || std::ranges::binary_search(selected, index); });
}

void ObjectCommands::HideSelected() {
    const std::vector<int> selected = m_objects.SelectedObjects();
    SetVisible([&](int index) { return !m_objects.IsHidden(index) && !std::ranges::binary_search(selected, index); });
}

void ObjectCommands::ShowOnlySelected() {
    const std::vector<int> selected = m_objects.SelectedObjects();
    if (selected.empty()) return;  // an empty scene shows nothing to work on
    SetVisible([&](int index) { return std::ranges::binary_search(selected, index); });
}

void ObjectCommands::ShowAll() {
    SetVisible([](int) { return true; });
}

void ObjectCommands::InvertVisibility() {
    SetVisible([this](int index) { return m_objects.IsHidden(index); });
}

void ObjectCommands::SetVisible(const std::function<bool(int index)>& isVisible) {
    if (m_pViewer == nullptr) return;
    bool hasChanged = false;
    for (const int index : m_objects.PresentObjects()) {
        const bool visible = isVisible(index);
        if (visible != m_objects.IsHidden(index)) continue;
        m_pViewer->Methods().SetObjectVisibility(static_cast<std::int16_t>(index), visible ? 1 : 0);
        m_objects.ShowVisible(index, visible);
        hasChanged = true;
    }
    if (hasChanged) emit VisibilityChanged();
}

void ObjectCommands::Centre(int index, QSize window) {
    if (m_pViewer == nullptr || index < 0 || index >= m_objects.ObjectCount()) return;
    std::vector<int> visible = m_objects.PresentObjects();
    std::erase_if(visible, [this](int i) { return m_objects.IsHidden(i) || m_objects.TrianglesOf(i) == 0; });
    CentreObject(m_pViewer->Methods(), index, visible, window);
}

// ---- selection

void ObjectCommands::FollowSelection() {
    if (m_pViewer == nullptr) return;
    // Also while the same rows are selected: a cut has replaced their objects, or a deletion has emptied the selection.
    std::vector<int> outlined;
    m_pViewer->Methods().ResetSelection();
    if (!m_bSuspended) {
        for (const int index : m_objects.SelectedObjects()) {
            m_pViewer->Methods().AddSelection(static_cast<std::int16_t>(index));
            outlined.push_back(m_objects.IdOf(index));
        }
    }
    // Both methods request no repaint.
    if (std::exchange(m_vOutlined, outlined) != outlined) m_pViewer->Methods().PerformInvalidate();
}

void ObjectCommands::SuspendOutline(bool on) {
    m_bSuspended = on;
    FollowSelection();
}

void ObjectCommands::SelectAt(int x, int y) {
    if (m_pViewer == nullptr) return;
    KV_ScenePane::SurfacePoint hit;
    if (m_pViewer->PickSurface(x, y, &hit))
        m_objects.Select({hit.object});
    else
        m_objects.Select({});
}

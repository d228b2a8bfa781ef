// The scene list, the host's connection and the window of a control.
#pragma once
#include <cstdint>
#include <memory>
#include <vector>

#include "KV_ScenePane/ScenePane.h"
#include "geometry/Mesh.h"
#include "platform/PaneWindow.h"

/// Written by control/, and by the imports of io/, which append to the object list. Only the thread that made the
/// control reads or writes it.
///
/// Invariants: m_pWindow is never null. It is the first member of the first base of the control, so it is destroyed
/// last: members that free OpenGL objects still find the window's context. An entry of m_vpMeshes is never null; its
/// position is the object index of the host.
struct SceneState {
    std::unique_ptr<PaneWindow> m_pWindow;
    KV_ScenePane::_DKV_ScenePaneEvents* m_pEvents = nullptr;  ///< the host's, or null; not owned
    bool m_bClosed = false;                                   ///< the host has destroyed its handle
    std::int32_t m_nReadyState = 0;  ///< that the host knows: of creation or the last ReadyStateChange

    std::vector<std::shared_ptr<Mesh>> m_vpMeshes;      ///< shared with the steps of m_vUndoStack
    std::vector<Mesh*> m_vpSelection;                   ///< not owned, may dangle: read it by LiveSelection()
    std::vector<std::weak_ptr<Mesh>> m_vSelectionRefs;  ///< of the entry of m_vpSelection at the same index

    bool m_bModified = false;              ///< a persisted property was written since the last save
    std::int32_t m_bDrawMosaic = 0;        ///< persisted and reported; nothing draws by it
    std::uint32_t m_nCreatorThreadId = 0;  ///< thread of the constructor; nothing reads it
};

// Settings of imports and exports, and the staging list of a parallel import.
#pragma once
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "geometry/Mesh.h"

/// Written by the imports of io/ and by the setting methods of control/.
///
/// Invariants: m_hImportMutex is set exactly between BeginParallelImport() and EndParallelImport(). While it is set,
/// m_vPendingImports is touched under it alone, by any thread; the settings are then read by those threads, and the
/// host must not change them. Outside a parallel import m_vPendingImports is empty.
struct ImportState {
    std::int32_t m_nScanSkipVal = 1;        ///< grids are thinned to every n-th row and column
    float m_fConfidenceFilter = 0.0f;       ///< pixels of less confidence are masked
    std::uint8_t m_bAllowEmptyObjects = 0;  ///< a grid without triangles still adds an object
    std::wstring m_strScanPath;             ///< path of the last ImportScan(); names the measurements that follow

    struct StagedMesh {
        std::int32_t m_iIndex = 0;  ///< order in the object list
        std::shared_ptr<Mesh> m_pMesh;
    };
    std::unique_ptr<std::mutex> m_hImportMutex;
    std::vector<StagedMesh> m_vPendingImports;

    std::string m_hpsSourceApp, m_hpsSourceVersion;  ///< written into every hps file
};

// State of the control for imports and exports: settings, and the staging list of a parallel import.
#pragma once
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "geometry/Mesh.h"

/// What an import passes on with a measurement: the object's properties, and the operations that are named in the lines
/// of the debugger output about a measurement that adds none.
struct MeasurementOrigin {
    std::wstring m_sName;
    std::uint32_t m_uColor = 0;                ///< 0x00BBGGRR, used when the grid has no colours of its own
    std::int32_t m_iIndex = -1;                ///< order in a parallel import; the host's own indices start at 0
    const char* m_pRefusedBy = "SetScanData";  ///< in the line with the reason
    const char* m_pMeshedBy = "SetScanData";   ///< in the fixed line about a grid without triangles
    unsigned m_uThreads = 1;                   ///< that may work on it, the calling one included
};

/// Written by the imports of io/ and by the setting methods of control/.
///
/// Invariants: m_hImportMutex is set exactly between BeginParallelImport() and EndParallelImport(). While it is set,
/// any thread can access m_vPendingImports, under this mutex alone; the settings are then read by those threads without
/// a lock, and the host must not change them. Outside a parallel import m_vPendingImports is empty.
struct ImportState {
    std::int32_t m_nScanSkipVal = 1;        ///< grids are thinned to every n-th row and column
    float m_fConfidenceFilter = 0.0f;       ///< pixels of less confidence are masked
    std::uint8_t m_bAllowEmptyObjects = 0;  ///< a grid without triangles adds an empty object
    std::wstring m_strScanPath;             ///< path of the last ImportScan(); names the measurements that follow

    std::string m_strLastError;  ///< why the last import or export of the host failed; empty when it did not

    struct StagedMesh {
        std::int32_t m_iIndex = 0;  ///< order in the object list
        std::shared_ptr<Mesh> m_pMesh;
    };
    std::unique_ptr<std::mutex> m_hImportMutex;
    std::vector<StagedMesh> m_vPendingImports;

    std::string m_hpsSourceApp, m_hpsSourceVersion;  ///< written into every hps file
};

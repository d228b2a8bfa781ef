// A mesh as the readers of mesh files return it.
#pragma once
#include <cstddef>

#include "geometry/Vertex.h"
#include "io/RecordShare.h"

struct FileMesh : MeshBuffers {
    using MeshBuffers::MeshBuffers;
    /// Coordinates that are infinite or NaN, among those that the file has; what is made up for a short file does not
    /// count.
    std::size_t m_uNotFinite = 0;
    /// Of a file without an own list of vertices, theirs is empty.
    RecordShare m_vertexShare, m_triangleShare;
};

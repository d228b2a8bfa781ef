// The normals of meshes that come as arrays, from files and from hosts.
#pragma once
#include "geometry/Vertex.h"

/// Sets each vertex normal to the mean of the unit normals of its faces, not renormalised: shorter than 1 where the
/// faces around a vertex differ in direction. Degenerate faces count as zero. (Mesh::ComputeVertexNormals() differs on
/// purpose.) A vertex without a face gets a zero normal. Indices must be valid. Cost: see SumFaceNormals().
/// @param threads  at most so many work on a large mesh; the result does not depend on them
void ComputeMeanNormals(MeshBuffers& buffers, unsigned threads = 1);

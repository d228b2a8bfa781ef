// The records of a mesh. They are public, since hosts hand over meshes of their own in them.
#pragma once
#include "KV_ScenePane/MeshBuffers.h"

using KV_ScenePane::MeshBuffers;
using KV_ScenePane::Triangle;
using KV_ScenePane::Vertex;

/// Texture coordinate of one triangle corner.
struct TexCoord {
    float u = 0.0f, v = 0.0f;
};

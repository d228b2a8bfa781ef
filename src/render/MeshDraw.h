// Meshes on the screen: the OpenGL side of Mesh::Draw(), Mesh::ReleaseBuffers() and Mesh::Texture.
#pragma once

/// Makes every mesh of the process draw and release its buffers by OpenGL. Any thread; needs no context, costs nothing
/// when repeated. Every control does it; a program that draws meshes without a control must call it first.
void InstallMeshDrawing();

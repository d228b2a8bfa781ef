// Writes the bumpy sphere as stl, ply, text ply and hps into a folder and imports each file through the public
// interface, so that bench/peers.py can time other programs on the same files.
//   peer_files FOLDER      prints one line per file: its path and the best time of seven imports in milliseconds
#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <fstream>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>

#include "KV_ScenePane/PathText.h"
#include "KV_ScenePane/ScenePane.h"
#include "PaneFixture.h"
#include "PlyText.h"
#include "SphereFixture.h"
#include "StlFixture.h"

namespace {

using KV_ScenePane::MeshBuffers, KV_ScenePane::Triangle, KV_ScenePane::Vertex;

constexpr std::int32_t kColumns = 1000, kRings = 500;

/// Numbers have the fewest digits that read back as the same float.
void WriteTextPly(const MeshBuffers& mesh, const std::string& path) {
    std::string text = "ply\nformat ascii 1.0\nelement vertex " + std::to_string(mesh.m_vVertices.size()) +
                       "\nproperty float x\nproperty float y\nproperty float z\nelement face " +
                       std::to_string(mesh.m_vTriangles.size()) +
                       "\nproperty list uchar int vertex_indices\nend_header\n";
    for (const Vertex& v : mesh.m_vVertices) {
        for (const float value : {v.x, v.y, v.z}) AppendNumber(text, value);
        text += '\n';
    }
    for (const Triangle& triangle : mesh.m_vTriangles) {
        text += "3 ";
        for (const std::int32_t index : triangle.v) AppendNumber(text, index);
        text += '\n';
    }
    std::ofstream(path, std::ios::binary) << text;
}

void WriteStlFile(const std::string& path, int million, StlOrder order) {
    const std::vector<std::byte> file = MakeBenchStl(million, order);
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
}

/// Best time of seven imports, milliseconds; throws when the mesh is incomplete.
double BestImportMs(KV_ScenePane::_DKV_ScenePane& methods, const std::string& path) {
    double best = std::numeric_limits<double>::infinity();
    for (int run = 0; run < 7; ++run) {
        methods.ClearData();
        malloc_trim(0);  // every import allocates new memory, as the first one does
        const auto start = std::chrono::steady_clock::now();
        methods.ImportMesh(KV_ScenePane::WidePath(path).c_str());
        const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
        best = std::min(best, took.count());
        std::int32_t vertices = 0, triangles = 0;
        methods.GetMeshDataSize(0, &vertices, &triangles);
        if (triangles < 2 * kColumns * kRings) throw std::runtime_error("an incomplete mesh was imported from " + path);
    }
    return best;
}

}  // namespace

int main(int argc, char** argv) try {
    if (argc != 2) {
        std::fputs("usage: peer_files FOLDER\n", stderr);
        return 2;
    }
    const std::string folder = argv[1];
    const auto in = [&folder](const char* name) { return folder + "/" + name; };
    WriteStlFile(in("1M.stl"), 1, StlOrder::Mesh);
    WriteStlFile(in("1M-shuffled.stl"), 1, StlOrder::Shuffled);
    WriteStlFile(in("5M.stl"), 5, StlOrder::Mesh);
    WriteStlFile(in("5M-shuffled.stl"), 5, StlOrder::Shuffled);
    WriteTextPly(MakeBenchSphere(kColumns, kRings), in("1M-text.ply"));
    const auto pane = MakePaneWithoutOpenGl();
    auto& methods = pane->Methods();
    methods.ImportMesh(KV_ScenePane::WidePath(in("1M-text.ply")).c_str());
    methods.InitializeKVReg();
    for (const char* name : {"1M.ply", "1M.hps"}) methods.ExportMesh(0, KV_ScenePane::WidePath(in(name)).c_str());
    for (const char* name :
         {"1M.stl", "1M-shuffled.stl", "5M.stl", "5M-shuffled.stl", "1M.ply", "1M-text.ply", "1M.hps"})
        std::printf("%s %.1f\n", in(name).c_str(), BestImportMs(methods, in(name)));
    methods.FinalizeKVReg();
} catch (const std::exception& error) {
    std::fprintf(stderr, "peer_files: %s\n", error.what());
    return 1;
}

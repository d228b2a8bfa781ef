// Stl files that other programs wrote. The expected counts were made by other readers.
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "KV_ScenePane/PathText.h"
#include "io/SampleFiles.h"
#include "io/StlMesh.h"

using testing::HasSubstr;

namespace {

struct StlSample {
    const char* path;
    std::size_t triangles, vertices;
};

const StlSample kBinary[] = {
    {"Formlabs+hackathon-slicer/media/icosphere.stl", 80, 42},
    {"Kitware+vtk-js/Data/stl/spherewithholes.stl", 1146, 593},
    {"Kitware+vtk-js/Data/stl/suzanne.stl", 4012, 2012},
    {"assimp+assimp/test/models/STL/3DSMaxExport.STL", 2000, 1042},
    {"assimp+assimp/test/models/STL/Spider_binary.stl", 1368, 722},
    {"assimp+assimp/test/models/STL/Wuson.stl", 3732, 2117},
    {"fogleman+fauxgl/examples/cube.stl", 12, 8},
    {"fogleman+fauxgl/examples/sphere.stl", 5180, 2592},
    {"google+draco/testdata/STL/test_sphere.stl", 224, 114},
    {"hschendel+stl/testdata/complex_bin.stl", 30476, 15240},
    {"hschendel+stl/testdata/confusingheader_bin.stl", 4, 4},  // its header starts with "solid"
    {"hschendel+stl/testdata/simple_bin.stl", 4, 4},
    {"kovacsv+Online3DViewer/test/testfiles/stl/cube_meshlab_binary.stl", 12, 8},
    {"kovacsv+Online3DViewer/test/testfiles/stl/stl_binary.stl", 728, 378},
    {"mikedh+trimesh/models/20mm-xyz-cube.stl", 260, 132},
    {"mikedh+trimesh/models/7_8ths_cube.stl", 24, 14},
    {"mikedh+trimesh/models/angle_block.STL", 704, 398},
    {"mikedh+trimesh/models/busted.STL", 3878, 1941},
    {"mikedh+trimesh/models/round.stl", 1120, 560},
    {"mikedh+trimesh/models/soup.stl", 100, 300},
    {"mikedh+trimesh/models/teapot.stl", 894, 480},
    {"nmwsharp+geometry-central/test/assets/stl_box_binary.stl", 12, 8},
    {"pmp-library+pmp-library/data/stl/icosahedron_binary.stl", 20, 12},
    {"ros-visualization+rviz/src/test/meshes/finger.stl", 668, 328},
    {"ros-visualization+rviz/src/test/meshes/invalid_extra.stl", 2, 6},  // bytes after the last triangle
    {"ros-visualization+rviz/src/test/meshes/valid.stl", 2, 6},
    {"sreiter+stl_reader/tests/data/binary_sphere.stl", 20, 12},
    {"wolph+numpy-stl/tests/stl_binary/Cube.stl", 12, 8},
    {"wolph+numpy-stl/tests/stl_binary/CubeInvalidUnicode.stl", 12, 8},
    {"wolph+numpy-stl/tests/stl_binary/HalfDonut.stl", 288, 144},  // a byte after the last triangle
    {"wolph+numpy-stl/tests/stl_binary/StarWithEmptyHeader.stl", 68, 36},
    {"wolph+numpy-stl/tests/stl_tests/triamid.stl", 10, 7},
};

class StlSampleFiles : public SampleFiles {
protected:
    static MeshBuffers Read(const std::string& path) { return ReadStlFile(KV_ScenePane::WidePath(kFolder + path)); }
};

}  // namespace

TEST_F(StlSampleFiles, GiveTheTrianglesAndVerticesThatOtherReadersCount) {
    for (const StlSample& row : kBinary) {
        const MeshBuffers mesh = Read(row.path);
        EXPECT_EQ(mesh.m_vTriangles.size(), row.triangles) << row.path;
        EXPECT_EQ(mesh.m_vVertices.size(), row.vertices) << row.path;
    }
}

TEST_F(StlSampleFiles, RepeatTheLastCoordinatesOfAFileThatIsCutShort) {
    // 91 of 100 bytes: y and z of the last corner are missing
    const MeshBuffers mesh = Read("ros-visualization+rviz/src/test/meshes/invalid.stl");
    ASSERT_EQ(mesh.m_vTriangles.size(), 2u);
    const Vertex& last = mesh.m_vVertices[static_cast<std::size_t>(mesh.m_vTriangles[1].v[2])];
    const Vertex& before = mesh.m_vVertices[static_cast<std::size_t>(mesh.m_vTriangles[1].v[1])];
    EXPECT_NE(last.x, before.x);
    EXPECT_EQ(last.y, before.y);
    EXPECT_EQ(last.z, before.z);
}

TEST_F(StlSampleFiles, AreRefusedAsTextWhereTheyAreText) {
    int texts = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(kFolder)) {
        const std::string extension = entry.path().extension();
        if (extension != ".stl" && extension != ".STL") continue;
        const std::string path = std::filesystem::relative(entry.path(), kFolder);
        if (std::ranges::any_of(kBinary, [&](const StlSample& row) { return row.path == path; })) continue;
        std::string start;
        std::ifstream(entry.path()) >> start;
        if (start != "solid") continue;
        ++texts;
        EXPECT_THAT([&] { (void)Read(path); }, testing::ThrowsMessage<FileReadError>(HasSubstr("text is not read")))
            << path;
    }
    EXPECT_EQ(texts, 33);
}

TEST_F(StlSampleFiles, AreRefusedWithoutATriangle) {
    EXPECT_THROW((void)Read("mikedh+trimesh/models/emptyIO/stl_empty_bin.stl"), FileReadError);
    EXPECT_THROW((void)Read("f3d-app+f3d/testing/data/tetrahedron, with commas & spaces.stl"), FileReadError);
}

// Ply files that other programs wrote. The expected counts and reasons come from a separate reader in another language,
// which was written for this table.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "KV_ScenePane/PathText.h"
#include "io/CPLYFile.h"
#include "io/SampleFiles.h"
#include "support/ControlFixture.h"

namespace {

using testing::EndsWith;
using testing::IsEmpty;

constexpr char kNoFaces[] = "holds no faces";
constexpr char kQuads[] = "Non-triangle faces not supported.";
constexpr char kNoElement[] = "Error in grammar at token 0: \"element\" expected.";
constexpr char kNoVertex[] = "No such element: vertex";
constexpr char kNoMagic[] = "Magic number in PLY header not found.";

struct PlySample {
    const char* path;
    int vertices, triangles;  ///< of an accepted file
    const char* reason;       ///< why it is refused, or empty
};

const PlySample kSampleFiles[] = {
    {"Fluci+ply-rs/example_plys/all_atomic_types_ok_ascii.ply", 0, 0, kNoElement},
    {"Fluci+ply-rs/example_plys/empty_2_ok_ascii.ply", 0, 0, kNoFaces},
    {"Fluci+ply-rs/example_plys/empty_2_ok_little_endian.ply", 0, 0, kNoFaces},
    {"Fluci+ply-rs/example_plys/empty_ok_ascii.ply", 0, 0, "Error in grammar at token 21: \"element\" expected."},
    {"Fluci+ply-rs/example_plys/exponent_values_ok_ascii.ply", 0, 0, kNoElement},
    {"Fluci+ply-rs/example_plys/greg_turk_example1_ok_ascii.ply", 0, 0, kQuads},
    {"Fluci+ply-rs/example_plys/greg_turk_example2_ok_ascii.ply", 0, 0, kQuads},
    {"Fluci+ply-rs/example_plys/header_min_ok_ascii.ply", 0, 0, kNoVertex},
    {"Fluci+ply-rs/example_plys/house_2_ok_ascii.ply", 5, 3, ""},
    {"Fluci+ply-rs/example_plys/house_2_ok_little_endian.ply", 5, 3, ""},
    {"Fluci+ply-rs/example_plys/house_ok_ascii.ply", 5, 3, ""},
    {"Fluci+ply-rs/example_plys/leading_spaces_ok_ascii.ply", 0, 0, kNoElement},
    {"Fluci+ply-rs/example_plys/single_elements_err_ascii.ply", 0, 0, kNoElement},
    {"Fluci+ply-rs/example_plys/single_elements_ok_ascii.ply", 0, 0, kNoElement},
    {"assimp+assimp/test/models/PLY/Wuson.ply", 0, 0, kNoElement},
    {"assimp+assimp/test/models/PLY/cube.ply", 0, 0, "Error in grammar at token 18: invalid element type in list none"},
    {"assimp+assimp/test/models/PLY/cube_binary.ply", 8, 12, ""},
    {"assimp+assimp/test/models/PLY/cube_binary_header_with_RN_newline.ply", 0, 0, kQuads},
    {"assimp+assimp/test/models/PLY/cube_binary_starts_with_nl.ply", 0, 0, kQuads},
    {"assimp+assimp/test/models/PLY/cube_uv.ply", 0, 0, kQuads},
    {"assimp+assimp/test/models/PLY/float-color.ply", 3, 1, ""},
    {"assimp+assimp/test/models/PLY/issue623.ply", 0, 0, "Unexpected end of data."},
    {"assimp+assimp/test/models/PLY/points.ply", 4, 0, kNoFaces},
    {"assimp+assimp/test/models/invalid/empty.ply", 0, 0, kNoMagic},
    {"daavoo+pyntcloud/examples/data/ankylosaurus_mesh.ply", 0, 0, kNoElement},
    {"daavoo+pyntcloud/tests/data/diamond.ply", 6, 8, ""},
    {"daavoo+pyntcloud/tests/data/diamond_ascii.ply", 6, 8, ""},
    {"daavoo+pyntcloud/tests/data/diamond_ascii_vertex_index.ply", 6, 8, ""},
    {"daavoo+pyntcloud/tests/data/diamond_with_bool.ply", 0, 0,
     "Error in grammar at token 31: invalid property type \"bool\""},
    {"daavoo+pyntcloud/tests/data/voxelgrid.ply", 6, 0, kNoFaces},
    {"google+draco/testdata/Box.ply", 0, 0, kNoElement},
    {"google+draco/testdata/cube_att.ply", 24, 12, ""},
    {"google+draco/testdata/cube_quads.ply", 0, 0, "Error in grammar at token 18: invalid element type in list none"},
    {"google+draco/testdata/delim_test.ply", 0, 0, kNoElement},
    {"google+draco/testdata/float_inf_point_cloud.ply", 0, 0, "Float expected, but found this: +inf"},
    {"google+draco/testdata/int_point_cloud.ply", 16, 0, kNoFaces},
    {"google+draco/testdata/test_extra_whitespace.ply", 3, 1, ""},
    {"google+draco/testdata/test_generic.ply", 114, 224, ""},
    {"google+draco/testdata/test_more_datatypes.ply", 0, 0,
     "Error in grammar at token 30: invalid element type in list none"},
    {"google+draco/testdata/test_pos_color.ply", 114, 224, ""},
    {"google+draco/testdata/test_pos_color_ascii.ply", 114, 224, ""},
    {"isl-org+Open3D/examples/test_data/knot.ply", 1440, 2880, ""},
    {"isl-org+Open3D/examples/test_data/sphere.ply", 642, 1280, ""},
    {"isl-org+Open3D/examples/test_data/test_sample_ascii.ply", 7, 0, kNoFaces},
    {"isl-org+Open3D/examples/test_data/test_sample_custom.ply", 7, 0, kNoFaces},
    {"isl-org+Open3D/examples/test_data/test_sample_wrong_format.ply", 2, 0, kNoFaces},
    {"kovacsv+Online3DViewer/test/testfiles/ply/cube.ply", 0, 0, kQuads},
    {"kovacsv+Online3DViewer/test/testfiles/ply/cube_meshlab_ascii.ply", 8, 12, ""},
    {"kovacsv+Online3DViewer/test/testfiles/ply/cube_meshlab_binary.ply", 8, 12, ""},
    {"kovacsv+Online3DViewer/test/testfiles/ply/cube_rgb.ply", 8, 12, ""},
    {"kovacsv+Online3DViewer/test/testfiles/ply/cube_rgb_binary.ply", 8, 12, ""},
    {"kovacsv+Online3DViewer/test/testfiles/ply/single_rectangle.ply", 0, 0, kQuads},
    {"kovacsv+Online3DViewer/test/testfiles/ply/single_triangle.ply", 3, 1, ""},
    {"kovacsv+Online3DViewer/test/testfiles/ply/single_triangle_with_comments.ply", 0, 0,
     "Integer expected, but found this: and"},
    {"kovacsv+Online3DViewer/test/testfiles/ply/two_triangles.ply", 6, 2, ""},
    {"mikedh+trimesh/models/cube_blender_uv.ply", 0, 0, kQuads},
    {"mikedh+trimesh/models/cube_blender_uv_meshlab.ply", 24, 12, ""},
    {"mikedh+trimesh/models/cycloidal.ply", 21384, 43368, ""},
    {"mikedh+trimesh/models/empty.ply", 0, 0, kNoFaces},
    {"mikedh+trimesh/models/emptyIO/ply_empty_ascii.ply", 0, 0, kNoFaces},
    {"mikedh+trimesh/models/emptyIO/ply_empty_bin.ply", 0, 0, kNoFaces},
    {"mikedh+trimesh/models/emptyIO/ply_empty_header.ply", 0, 0, kNoVertex},
    {"mikedh+trimesh/models/emptyIO/ply_points_ascii.ply", 8, 0, kNoFaces},
    {"mikedh+trimesh/models/emptyIO/ply_points_bin.ply", 8, 0, kNoFaces},
    {"mikedh+trimesh/models/fixed_top.ply", 2374, 4772, ""},
    {"mikedh+trimesh/models/fuze.ply", 502, 1000, ""},
    {"mikedh+trimesh/models/fuze_ascii.ply", 0, 0, kQuads},
    {"mikedh+trimesh/models/metadata.ply", 4, 2, ""},
    {"mikedh+trimesh/models/multi.ply", 0, 0, kQuads},
    {"mikedh+trimesh/models/plane.ply", 0, 0, kQuads},
    {"mikedh+trimesh/models/points_ascii_with_lists.ply", 5, 0, kNoFaces},
    {"mikedh+trimesh/models/points_emptyascii.ply", 12, 0, kNoFaces},
    {"mikedh+trimesh/models/reference.ply", 845, 1610, ""},
    {"mikedh+trimesh/models/suzanne.ply", 0, 0, kQuads},
    {"mikedh+trimesh/models/tet.ply", 4, 4, ""},
    {"mosra+magnum/src/Magnum/SceneTools/Test/SceneConverterTestFiles/quad-duplicates.ply", 6, 2, ""},
    {"mosra+magnum/src/MagnumPlugins/AnySceneConverter/Test/objectid.ply", 3, 1, ""},
    {"mosra+magnum/src/MagnumPlugins/AnySceneImporter/Test/per-face-colors-be.ply", 0, 0,
     "Error in grammar at token 17: invalid count type in list none"},
    {"nmwsharp+geometry-central/test/assets/bob_small.ply", 250, 500, ""},
    {"nmwsharp+geometry-central/test/assets/fox.ply", 313, 622, ""},
    {"nmwsharp+geometry-central/test/assets/lego.ply", 1649, 3072, ""},
    {"nmwsharp+geometry-central/test/assets/sphere_small.ply", 162, 320, ""},
    {"nmwsharp+geometry-central/test/assets/spot.ply", 2930, 5856, ""},
    {"nmwsharp+happly/test/sampledata/platonic_shelf.ply", 0, 0, kQuads},
    {"nmwsharp+happly/test/sampledata/platonic_shelf_ascii.ply", 0, 0, kQuads},
    {"nmwsharp+happly/test/sampledata/platonic_shelf_big_endian.ply", 0, 0,
     "Big-endian binary format not yet supported."},
    {"nschloe+meshio/tests/meshes/ply/tet.ply", 0, 0, kNoMagic},
    {"nzfeng+points-as-tori/data/tooth.ply", 2048, 0, kNoFaces},
    {"visgl+loaders.gl/modules/ply/test/data/gaussian/train-1000.ply", 1000, 0, kNoFaces},
};

/// The reason why the import refused the file; empty when it added an object.
std::string RefusalOf(NoPictureControl& c, const std::string& path) {
    try {
        c->ImportMesh(KV_ScenePane::WidePath(path).c_str());
        return c.debugOutput.Take();
    } catch (const CPLYFileError& error) {
        return error.what();
    }
}

using PlySampleFiles = SampleFiles;

TEST_F(PlySampleFiles, AreImportedOrRefusedWithTheExpectedReason) {
    for (const PlySample& row : kSampleFiles) {
        SCOPED_TRACE(row.path);
        NoPictureControl c;
        const std::string reason = RefusalOf(c, kFolder + row.path);
        if (row.reason == std::string(kNoFaces)) {
            EXPECT_THAT(reason, EndsWith(std::string(kNoFaces) + "\n"));
        } else {
            EXPECT_EQ(reason, row.reason);
        }
        ASSERT_EQ(c->GetNumObjects(), *row.reason == '\0' ? 1 : 0);
        if (c->GetNumObjects() == 0) continue;
        EXPECT_EQ(c->m_vpMeshes[0]->GetVertexCount(), static_cast<std::size_t>(row.vertices));
        EXPECT_EQ(c->m_vpMeshes[0]->GetTriangleCount(), static_cast<std::size_t>(row.triangles));
    }
}

TEST_F(PlySampleFiles, AreAllListedInTheTable) {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(kFolder)) {
        if (entry.path().extension() != ".ply") continue;
        ++count;
        const std::string path = entry.path().string().substr(kFolder.size());
        EXPECT_TRUE(std::ranges::any_of(kSampleFiles, [&](const PlySample& row) { return path == row.path; })) << path;
    }
    EXPECT_EQ(count, std::size(kSampleFiles));
}

}  // namespace

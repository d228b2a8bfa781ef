// Meshes in ply files: what is read, and why files are refused.
#include "io/PlyMesh.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <array>
#include <fstream>
#include <tuple>

#include "KV_ScenePane/PathText.h"
#include "io/CPLYFile.h"
#include "io/PlySample.h"
#include "support/ScratchFolder.h"

namespace {

using namespace ply_sample;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

PlyMeshData Read(const std::string& bytes) {
    const ScratchFolder folder;
    std::ofstream(folder / "a.ply", std::ios::binary) << bytes;
    return ReadPlyMesh(KV_ScenePane::WidePath(folder / "a.ply"));
}

std::vector<std::array<float, 3>> Positions(const PlyMeshData& mesh) {
    std::vector<std::array<float, 3>> positions;
    for (const Vertex& v : *mesh.m_pVertices) positions.push_back({v.x, v.y, v.z});
    return positions;
}
std::vector<std::uint32_t> ColorsOf(const PlyMeshData& mesh) {
    std::vector<std::uint32_t> colors;
    for (const Vertex& v : *mesh.m_pVertices) colors.push_back(v.color);
    return colors;
}
std::vector<std::array<int, 3>> Indices(const PlyMeshData& mesh) {
    std::vector<std::array<int, 3>> indices;
    for (const Triangle& t : *mesh.m_pTriangles) indices.push_back({t.v[0], t.v[1], t.v[2]});
    return indices;
}

using Position = std::array<float, 3>;
using Corner = std::array<int, 3>;

void ExpectTheTriangle(const PlyMeshData& mesh) {
    EXPECT_THAT(Positions(mesh), ElementsAre(Position{0, 0, 0}, Position{1, 0, 0}, Position{0, 1, 0}));
    EXPECT_THAT(Indices(mesh), ElementsAre(Corner{0, 1, 2}));
}

// ---- positions

TEST(ReadPlyMesh, ReadsBinary) {
    const PlyMeshData mesh = Read(BinaryTriangle());
    ExpectTheTriangle(mesh);
    EXPECT_EQ(mesh.GetVertexCount(), 3u);
    EXPECT_EQ(mesh.GetTriangleCount(), 1u);
    EXPECT_EQ(mesh.GetVertex(1).x, 1);
    EXPECT_EQ(mesh.GetTriangle(0).v[2], 2);
    EXPECT_FALSE(mesh.m_bHasColors);
    EXPECT_FALSE(mesh.m_bHasTexture);
    EXPECT_THAT(ColorsOf(mesh), ElementsAre(0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF));
}

TEST(ReadPlyMesh, ReadsText) {
    const PlyMeshData mesh = Read(TextTriangle());
    ExpectTheTriangle(mesh);
    EXPECT_FALSE(mesh.m_bHasColors);
    EXPECT_THAT(ColorsOf(mesh), ElementsAre(0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF));
}

TEST(ReadPlyMesh, ReadsFourBytesPerBinaryCoordinateOfAnyType) {
    // The low half of a double that holds two floats, and an int that holds the bits of one.
    const std::string properties = "property double x\nproperty int y\nproperty float z\n";
    const std::string record = Floats({1.5f, 77, 2.5f, 3.5f});
    const PlyMeshData mesh = Read(kBinary + Vertices(1, properties) + Faces(1) + kEnd + record + Face(0, 0, 0));
    EXPECT_THAT(Positions(mesh), ElementsAre(Position{1.5f, 2.5f, 3.5f}));
}

TEST(ReadPlyMesh, ReadsTextCoordinatesOfEveryType) {
    const std::string properties = "property double x\nproperty int y\nproperty uchar z\n";
    const PlyMeshData mesh = Read(kText + Vertices(1, properties) + Faces(1) + kEnd + "1.5e2 -2.5 300 3 0 0 0\n");
    EXPECT_THAT(Positions(mesh), ElementsAre(Position{150, -2.5f, 300}));
}

TEST(ReadPlyMesh, FindsCoordinatesInAnyOrderAndIgnoresNormals) {
    const std::string properties =
        "property float nx\nproperty float z\nproperty uchar quality\nproperty float x\nproperty float ny\n"
        "property float y\nproperty float nz\n";
    const std::string binary = Floats({9, 3}) + "q" + Floats({1, 9, 2, 9});
    for (const std::string& file : {kBinary + Vertices(1, properties) + Faces(1) + kEnd + binary + Face(0, 0, 0),
                                    kText + Vertices(1, properties) + Faces(1) + kEnd + "9 3 113 1 9 2 9\n3 0 0 0"}) {
        const PlyMeshData mesh = Read(file);
        EXPECT_THAT(Positions(mesh), ElementsAre(Position{1, 2, 3}));
        EXPECT_EQ(std::tuple(mesh.GetVertex(0).nx, mesh.GetVertex(0).ny, mesh.GetVertex(0).nz), std::tuple(0, 0, 0));
        EXPECT_EQ(mesh.GetVertex(0).gridIndex, 0u);
    }
}

TEST(ReadPlyMesh, KeepsTheBitsOfBinaryCoordinates) {
    const std::uint32_t bits[] = {0x7FC12345, 0xFF812345, 0x80000000};
    const PlyMeshData mesh =
        Read(kBinary + Vertices(1) + Faces(1) + kEnd + Bytes(bits[0], bits[1], bits[2]) + Face(0, 0, 0));
    EXPECT_EQ(std::memcmp(&mesh.GetVertex(0), bits, sizeof bits), 0);
}

TEST(ReadPlyMesh, ReadsElementsInAnyOrderAndOthersBetweenThem) {
    const std::string other = "element edge 2\nproperty list uchar short ends\nproperty double length\n";
    const std::string ends = "\x02" + Bytes(std::int16_t{7}, std::int16_t{8}, 1.0);
    ExpectTheTriangle(Read(kBinary + Faces(1) + other + Vertices(3) + kEnd + Face(0, 1, 2) + ends + ends + Corners()));
    ExpectTheTriangle(
        Read(kText + Faces(1) + other + Vertices(3) + kEnd + "3 0 1 2 2 7 8 1.0 2 7 8 1.0 0 0 0 1 0 0 0 1 0"));
}

TEST(ReadPlyMesh, ReadsNamesInCapitals) {
    ExpectTheTriangle(Read(std::string(kBinary) +
                           "ELEMENT VERTEX 3\nPROPERTY FLOAT X\nproperty float Y\nproperty float Z\n"
                           "element Face 1\nproperty list UCHAR INT Vertex_Index\nEND_HEADER\n" +
                           Corners() + Face(0, 1, 2)));
}

TEST(ReadPlyMesh, ReadsATwoByteLineEnd) {
    std::string header = std::string(kBinary) + Vertices(3) + Faces(1) + kEnd;
    for (std::size_t at = 0; (at = header.find('\n', at)) != std::string::npos; at += 2) header.replace(at, 1, "\r\n");
    ExpectTheTriangle(Read(header + Corners() + Face(0, 1, 2)));
}

// ---- faces

TEST(ReadPlyMesh, ReadsTheUsualBinaryFacesUnderAnyName) {
    for (const char* list : {"property list uchar int corners\n", "property list char uint vertex_index\n",
                             "property list uchar uint32 x\n"}) {
        ExpectTheTriangle(Read(kBinary + Vertices(3) + Faces(1, list) + kEnd + Corners() + Face(0, 1, 2)));
    }
}

TEST(ReadPlyMesh, ReadsIndicesOfEveryTypeBeforeOtherItems) {
    const std::string shorts = Bytes(3, std::int16_t{0}, std::int16_t{1}, std::int16_t{2});
    ExpectTheTriangle(
        Read(kBinary + Vertices(3) + Faces(1, "property list int short vertex_indices\n") + kEnd + Corners() + shorts));
    ExpectTheTriangle(Read(kBinary + Vertices(3) +
                           Faces(1, "property list uchar uchar vertex_index\nproperty uchar flags\n") + kEnd +
                           Corners() + std::string("\x03\x00\x01\x02\xFF", 5)));
    ExpectTheTriangle(Read(kText + Vertices(3) + Faces(1, "property list int double vertex_index\nproperty int f\n") +
                           kEnd + "0 0 0 1 0 0 0 1 0 3 0 1 2 99"));
}

TEST(ReadPlyMesh, PrefersVertexIndicesToVertexIndex) {
    const std::string both = "property list uchar int vertex_index\nproperty list uchar int vertex_indices\n";
    ExpectTheTriangle(Read(kBinary + Vertices(3) + Faces(1, both) + kEnd + Corners() + Face(2, 2, 2) + Face(0, 1, 2)));
    ExpectTheTriangle(Read(kText + Vertices(3) + Faces(1, both) + kEnd + "0 0 0 1 0 0 0 1 0 3 2 2 2 3 0 1 2"));
}

TEST(ReadPlyMesh, GivesNoTrianglesWithoutFaces) {
    for (const std::string& file :
         {kBinary + Vertices(3) + kEnd + Corners(), kText + Vertices(3) + kEnd + "0 0 0 1 0 0 0 1 0",
          kBinary + Vertices(3) + Faces(0) + kEnd + Corners(), kBinary + Vertices(0) + Faces(0) + kEnd,
          kText + Vertices(0) + Faces(0) + kEnd,
          kText + Vertices(0, std::string(kPositions) + kColors) + Faces(0) + kEnd,
          // Without faces an image needs no texture coordinates.
          kBinary + Vertices(0) + Faces(0) + Image(1) + kEnd + "i",
          // Colours are read for meshes only: errors in them are not found without faces.
          kText + Vertices(1, std::string(kPositions) + "property uchar red\n") + kEnd + "0 0 0 9"}) {
        EXPECT_THAT(*Read(file).m_pTriangles, IsEmpty());
    }
    EXPECT_EQ(Read(kBinary + Vertices(3) + kEnd + Corners()).GetVertexCount(), 3u);
}

// ---- colours

const std::string kColored = std::string(kPositions) + kColors;
const std::string kWithAlpha = kColored + "property uchar alpha\n";

TEST(ReadPlyMesh, ReadsOpaqueColors) {
    const std::string binary = Floats({0, 0, 0}) + "\x10\x20\x30" + Floats({0, 0, 0}) + "\xFF\xFE\xFD";
    for (const std::string& file :
         {kBinary + Vertices(2, kColored) + Faces(1) + kEnd + binary + Face(0, 1, 0),
          kText + Vertices(2, kColored) + Faces(1) + kEnd + "0 0 0 16 32 48 0 0 0 255 254 253 3 0 1 0"}) {
        const PlyMeshData mesh = Read(file);
        EXPECT_TRUE(mesh.m_bHasColors);
        EXPECT_THAT(ColorsOf(mesh), ElementsAre(0xFF102030, 0xFFFFFEFD));
    }
}

TEST(ReadPlyMesh, ReadsAlpha) {
    const std::string binary = Floats({0, 0, 0}) + "\x10\x20\x30\x40" + Floats({0, 0, 0}) + std::string("\1\2\3\0", 4);
    for (const std::string& file :
         {kBinary + Vertices(2, kWithAlpha) + Faces(1) + kEnd + binary + Face(0, 1, 0),
          kText + Vertices(2, kWithAlpha) + Faces(1) + kEnd + "0 0 0 16 32 48 64 0 0 0 1 2 3 0 3 0 1 0"}) {
        EXPECT_THAT(ColorsOf(Read(file)), ElementsAre(0x40102030, 0x00010203));
    }
}

TEST(ReadPlyMesh, ReadsTextColorsBetweenAndBeforeThePositions) {
    const std::string properties =
        "property uchar alpha\nproperty float y\nproperty uchar blue\nproperty uchar red\nproperty float z\n"
        "property float quality\nproperty uchar green\nproperty float x\n";
    const PlyMeshData mesh = Read(kText + Vertices(2, properties) + Faces(1) + kEnd +
                                  "1 2.5 3 4 5.5 nan 6 7.5\n10 20 30 40 50 inf 60 70\n3 0 1 0");
    EXPECT_THAT(Positions(mesh), ElementsAre(Position{7.5f, 2.5f, 5.5f}, Position{70, 20, 50}));
    EXPECT_THAT(ColorsOf(mesh), ElementsAre(0x01040603, 0x0A283C1E));
}

TEST(ReadPlyMesh, ReadsNoColorsOfATextWithoutFaces) {
    for (const char* data : {"1 2 3 red 5 6", "1 2 3 4 5 6"}) {
        const PlyMeshData mesh = Read(kText + Vertices(1, kColored) + kEnd + data);
        EXPECT_THAT(Positions(mesh), ElementsAre(Position{1, 2, 3}));
        EXPECT_FALSE(mesh.m_bHasColors);
        EXPECT_THAT(ColorsOf(mesh), ElementsAre(0xFFFFFFFF));
    }
}

// A list in the record breaks the order of a walk from any item but the first: from each colour of the first record it
// reads a token of the second one as the list's count and skips past the element.
TEST(ReadPlyMesh, HasBlackColorsWhereAMixedElementEndsTooEarly) {
    const std::string properties = std::string(kPositions) + kColors + "property list uchar int more\n";
    const PlyMeshData mesh =
        Read(kText + Vertices(2, properties) + Faces(1) + kEnd + "0 0 0 1 2 3 0\n0 0 9 4 5 6 0\n3 0 1 0");
    EXPECT_TRUE(mesh.m_bHasColors);
    EXPECT_THAT(ColorsOf(mesh), ElementsAre(0xFF010203, 0xFF000000));
}

TEST(ReadPlyMesh, IgnoresGreenBlueAndAlphaWithoutRed) {
    const std::string properties = std::string(kPositions) + "property uchar green\nproperty uchar alpha\n";
    const PlyMeshData mesh =
        Read(kBinary + Vertices(1, properties) + Faces(1) + kEnd + Floats({0, 0, 0}) + "\x20\x40" + Face(0, 0, 0));
    EXPECT_FALSE(mesh.m_bHasColors);
    EXPECT_THAT(ColorsOf(mesh), ElementsAre(0xFFFFFFFF));
}

TEST(ReadPlyMesh, ReadsTheLowByteOfAWiderColor) {
    const std::string properties =
        std::string(kPositions) + "property short red\nproperty int green\nproperty float blue\n";
    const std::string record = Floats({0, 0, 0}) + Bytes(std::int16_t{0x0111}, 0x01020322, std::uint32_t{0x3F800033});
    const PlyMeshData binary = Read(kBinary + Vertices(1, properties) + Faces(1) + kEnd + record + Face(0, 0, 0));
    EXPECT_THAT(ColorsOf(binary), ElementsAre(0xFF112233));
    const PlyMeshData text = Read(kText + Vertices(1, properties) + Faces(1) + kEnd + "0 0 0 273 -1 1.75 3 0 0 0");
    EXPECT_THAT(ColorsOf(text), ElementsAre(0xFF11FF01));
}

// ---- textures

TEST(ReadPlyMesh, ReadsATextureByteForByte) {
    const std::string image("\0\x89PNG\r\n\x1A\xFF", 9);
    const PlyMeshData mesh = Read(kBinary + Vertices(3) + Faces(2, kFacesWithUv) + Image(9) + kEnd + Corners() +
                                  Face(0, 1, 2) + "\x06" + Floats({0, 1, 2, 3, 4, 5}) +  //
                                  Face(2, 1, 0) + "\x06" + Floats({6, 7, 8, 9, 10, -0.5f}) + image);
    EXPECT_TRUE(mesh.m_bHasTexture);
    EXPECT_EQ(std::string(mesh.m_vImageBytes.begin(), mesh.m_vImageBytes.end()), image);
    EXPECT_THAT(mesh.m_vTexCoords, ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, -0.5f));
    EXPECT_THAT(Indices(mesh), ElementsAre(Corner{0, 1, 2}, Corner{2, 1, 0}));
}

TEST(ReadPlyMesh, HasNoTextureWithoutAnImageOrWithoutFaces) {
    const std::string uv = "\x06" + Floats({0, 1, 2, 3, 4, 5});
    const PlyMeshData none =
        Read(kBinary + Vertices(3) + Faces(1, kFacesWithUv) + kEnd + Corners() + Face(0, 1, 2) + uv);
    EXPECT_FALSE(none.m_bHasTexture);
    EXPECT_THAT(none.m_vTexCoords, IsEmpty());
    const PlyMeshData empty =
        Read(kBinary + Vertices(3) + Faces(1, kFacesWithUv) + Image(0) + kEnd + Corners() + Face(0, 1, 2) + uv);
    EXPECT_FALSE(empty.m_bHasTexture);
    const PlyMeshData noFaces = Read(kBinary + Vertices(0) + Faces(0, kFacesWithUv) + Image(1) + kEnd + "i");
    EXPECT_FALSE(noFaces.m_bHasTexture);
}

TEST(ReadPlyMesh, IgnoresATextureInText) {
    const PlyMeshData mesh = Read(kText + Vertices(3) + Faces(1, kFacesWithUv) + Image(2) + kEnd +
                                  "0 0 0 1 0 0 0 1 0\n3 0 1 2 2 0 1\n65 66\n");  // two coordinates instead of six
    ExpectTheTriangle(mesh);
    EXPECT_FALSE(mesh.m_bHasTexture);
    EXPECT_THAT(mesh.m_vImageBytes, IsEmpty());
}

// ---- refusals

struct BadFile {
    const char* name;
    std::string bytes;
    const char* reason;
    std::int64_t position = -1;
};
void PrintTo(const BadFile& row, std::ostream* out) { *out << row.name; }

std::string Header(const std::string& start, const std::string& vertex, const std::string& face) {
    return start + vertex + face + kEnd;
}
const std::string kBinaryHeader = Header(kBinary, Vertices(3), Faces(1));
const std::string kTextHeader = Header(kText, Vertices(3), Faces(1));
const std::string kTextCorners = "0 0 0 1 0 0 0 1 0 ";
// Positions count from the data's first byte; in text that is the line end of the header.
constexpr char kEndOfData[] = "Unexpected end of data.";
constexpr char kOtherFaces[] = "Non-triangle faces not supported.";
const std::string kUv5 = "\x05" + Floats({0, 1, 2, 3, 4});

const BadFile kBadFiles[] = {
    {"Empty", "", "Magic number in PLY header not found.", 0},
    {"NoVertex", Header(kText, "", Faces(0)), "No such element: vertex"},
    {"NoX", Header(kText, Vertices(0, "property float y\nproperty float z\n"), ""), "No such property: x"},
    {"NoY", Header(kText, Vertices(0, "property float x\nproperty float z\n"), ""), "No such property: y"},
    {"NoZ", Header(kBinary, Vertices(0, "property float x\nproperty float y\n"), ""), "No such property: z"},
    {"BigEndian", "ply\nformat binary_big_endian 1.0\n" + Vertices(0) + kEnd,
     "Big-endian binary format not yet supported."},
    {"QuadInBinary", kBinaryHeader + Corners() + "\x04" + Bytes(0, 1, 2, 0), kOtherFaces},
    {"LineInBinary", kBinaryHeader + Corners() + "\x02" + Bytes(0, 1), kOtherFaces},
    {"NoCornersInBinary", kBinaryHeader + Corners() + std::string(1, '\0'), kOtherFaces},
    {"QuadBehindATriangle",
     Header(kBinary, Vertices(3), Faces(2)) + Corners() + Face(0, 1, 2) + "\x04" + Bytes(0, 1, 2, 0), kOtherFaces},
    {"LineBehindAQuad",
     Header(kBinary, Vertices(3), Faces(2)) + Corners() + "\x04" + Bytes(0, 1, 2, 0) + "\x02" + Bytes(0, 1),
     kOtherFaces},
    {"QuadOfShorts",
     Header(kBinary, Vertices(3), Faces(1, "property list uchar uchar vertex_indices\n")) + Corners() +
         std::string("\x04\0\1\2\0", 5),
     kOtherFaces},
    {"QuadInText", kTextHeader + kTextCorners + "4 0 1 2 0", kOtherFaces},
    {"LineInText", kTextHeader + kTextCorners + "2 0 1", kOtherFaces},
    {"NoIndicesInBinary",
     Header(kBinary, Vertices(3), Faces(1, "property list uchar short corners\n")) + Corners() + "\x03" +
         Bytes(std::int16_t{0}, std::int16_t{1}, std::int16_t{2}),
     "No such property: vertex_indices"},
    {"NoIndicesInText",
     Header(kText, Vertices(3), Faces(1, "property list uchar int corners\n")) + kTextCorners + "3 0 1 2",
     "No such property: vertex_indices"},
    {"FaceWithoutItemsAndAHugeCount", Header(kBinary, Vertices(3), Faces(2147483647, "")) + Corners(),
     "No such property: vertex_indices"},
    {"RedAlone",
     Header(kBinary, Vertices(1, std::string(kPositions) + "property uchar red\n"), Faces(1)) + Floats({0, 0, 0}) +
         "r" + Face(0, 0, 0),
     "No such property: green"},
    {"NoBlue",
     Header(kText, Vertices(1, std::string(kPositions) + "property uchar red\nproperty uchar green\n"), Faces(1)) +
         "0 0 0 1 2 3 0 0 0",
     "No such property: blue"},
    // The faces are read before the colours.
    {"QuadAndRedAlone",
     Header(kBinary, Vertices(1, std::string(kPositions) + "property uchar red\n"), Faces(1)) + Floats({0, 0, 0}) +
         "r" + "\x04" + Bytes(0, 0, 0, 0),
     kOtherFaces},
    {"QuadAndAColorThatIsNone", Header(kText, Vertices(1, kColored), Faces(1)) + "0 0 0 1 red 3 4 0 0 0 0",
     kOtherFaces},
    {"FiveTextureCoordinates",
     Header(kBinary, Vertices(3), Faces(1, kFacesWithUv))
             .insert(std::string(Header(kBinary, Vertices(3), Faces(1, kFacesWithUv))).find(kEnd), Image(1)) +
         Corners() + Face(0, 1, 2) + kUv5 + "i",
     "Expected 6 UV coordinates per face."},
    {"TextureWithoutCoordinates", kBinary + Vertices(3) + Faces(1) + Image(1) + kEnd + Corners() + Face(0, 1, 2) + "i",
     "No such property: texcoord"},
    {"TextureWithoutBytes",
     kBinary + Vertices(3) + Faces(1, kFacesWithUv) + "element texture 1\nproperty uchar pixels\n" + kEnd + Corners() +
         Face(0, 1, 2) + "\x06" + Floats({0, 1, 2, 3, 4, 5}) + "i",
     "No such property: bytes"},
    {"ListInABinaryVertex",
     Header(kBinary, Vertices(1, std::string(kPositions) + "property list uchar int more\n"), Faces(1)) +
         Floats({0, 0, 0}) + std::string(1, '\0') + Face(0, 0, 0),
     "No array-style access to elements that contain list properties."},
    {"IndexBehindTheLast", kBinaryHeader + Corners() + Face(0, 1, 3), "Triangle 0 refers to vertex 3 of 3."},
    {"IndexBelowZero", Header(kBinary, Vertices(3), Faces(2)) + Corners() + Face(0, 1, 2) + Face(0, -1, 9),
     "Triangle 1 refers to vertex -1 of 3."},
    {"LargestIndex", kTextHeader + kTextCorners + "3 2147483647 1 2", "Triangle 0 refers to vertex 2147483647 of 3."},
    {"SmallestIndex", kTextHeader + kTextCorners + "3 0 1 -2147483648",
     "Triangle 0 refers to vertex -2147483648 of 3."},
    {"UnsignedIndexAboveAll",
     Header(kBinary, Vertices(3), Faces(1, "property list uchar uint vertex_indices\n")) + Corners() + Face(0, 1, -1),
     "Triangle 0 refers to vertex -1 of 3."},
    {"IndexWithoutVertices", Header(kBinary, Vertices(0), Faces(1)) + Face(0, 0, 0),
     "Triangle 0 refers to vertex 0 of 0."},
    {"HalfAVertex", Header(kBinary, Vertices(3), "") + Corners().substr(1), kEndOfData, 35},
    {"HalfAFace", kBinaryHeader + Corners() + Face(0, 1, 2).substr(0, 12), kEndOfData, 36 + 12},
    {"HalfAnImage",
     kBinary + Vertices(3) + Faces(1, kFacesWithUv) + Image(2) + kEnd + Corners() + Face(0, 1, 2) + "\x06" +
         Floats({0, 1, 2, 3, 4, 5}) + "i",
     kEndOfData, 36 + 13 + 25 + 1},
    {"MoreVerticesThanBytes", Header(kBinary, Vertices(2147483647), Faces(1)) + Corners(), kEndOfData, 36},
    {"MoreFacesThanBytes", Header(kBinary, Vertices(3), Faces(2147483647)) + Corners() + Face(0, 1, 2), kEndOfData,
     36 + 13},
    {"MoreImageThanBytes",
     kBinary + Vertices(3) + Faces(1, kFacesWithUv) + Image(2147483647) + kEnd + Corners() + Face(0, 1, 2) + "\x06" +
         Floats({0, 1, 2, 3, 4, 5}) + "i",
     kEndOfData, 36 + 13 + 25 + 1},
    // All bytes that the header announces are there, but the last float ends after them.
    {"CoordinatesOfOneByteEach",
     Header(kBinary, Vertices(1, "property char x\nproperty char y\nproperty char z\n"), "") + "xyz", kEndOfData, 0},
    {"MoreVerticesThanTokens", Header(kText, Vertices(2147483647), Faces(1)) + "0 0 0", kEndOfData, 6},
    {"MoreFacesThanTokens", Header(kText, Vertices(3), Faces(2147483647)) + kTextCorners + "3 0 1 2", kEndOfData, 26},
    {"WordInText", kTextHeader + "0 0 0 1 zero 0 0 1 0 3 0 1 2", "Float expected, but found this: zero", 9},
    {"WordAmongIndices", kTextHeader + kTextCorners + "3 0 one 2", "List element is not an integer: one", 23},
    // All blues before all greens before all reds, and the positions before them all.
    {"WordsAmongColors", Header(kText, Vertices(2, kColored), Faces(1)) + "0 0 0 red green 3 0 0 0 1 2 blue 3 0 0 0",
     "Integer expected, but found this: blue", 29},
    {"WordsAmongColorsAndPositions",
     Header(kText, Vertices(2, kColored), Faces(1)) + "0 0 0 red 2 3 0 0 z 1 2 3 3 0 0 0",
     "Float expected, but found this: z", 19},
    {"WordAmongColors", Header(kText, Vertices(1, kColored), Faces(1)) + "0 0 0 1 red 3 3 0 0 0",
     "Integer expected, but found this: red", 9},
};

class ReadPlyMeshRefuses : public testing::TestWithParam<BadFile> {};

TEST_P(ReadPlyMeshRefuses, AndSaysWhy) {
    try {
        (void)Read(GetParam().bytes);
        FAIL() << "the file was accepted";
    } catch (const CPLYFileError& error) {
        EXPECT_STREQ(error.what(), GetParam().reason);
        EXPECT_EQ(error.GetPosition(), GetParam().position);
    }
}
INSTANTIATE_TEST_SUITE_P(Ply, ReadPlyMeshRefuses, testing::ValuesIn(kBadFiles),
                         [](const auto& row) { return row.param.name; });

TEST(ReadPlyMesh, TreatsAMissingFileAsOneWithoutTheMagicWord) {
    const ScratchFolder folder;
    ASSERT_EQ(::mkfifo((folder / "pipe.ply").c_str(), 0600), 0);  // without a writer: opening it must not wait
    for (const std::string& path : {folder / "missing.ply", folder / "", folder / "pipe.ply"}) {
        try {
            (void)ReadPlyMesh(KV_ScenePane::WidePath(path));
            FAIL() << "the file was accepted";
        } catch (const CPLYFileError& error) {
            EXPECT_STREQ(error.what(), "Magic number in PLY header not found.") << path;
            EXPECT_EQ(error.GetPosition(), -1) << path;
        }
    }
}

TEST(ReadPlyMesh, RefusesEveryShorterFile) {
    const std::string texture = kBinary + Vertices(3, kWithAlpha) + Faces(1, kFacesWithUv) + Image(2) + kEnd;
    const std::string corner = Floats({0, 0, 0}) + "rgba";
    const std::string file =
        texture + corner + corner + corner + Face(0, 1, 2) + "\x06" + Floats({0, 1, 2, 3, 4, 5}) + "im";
    ASSERT_TRUE(Read(file).m_bHasTexture);
    for (std::size_t size = texture.size(); size < file.size(); ++size)
        EXPECT_THROW((void)Read(file.substr(0, size)), CPLYFileError) << size;
    const std::string text = TextTriangle();
    for (std::size_t size = text.find(kEnd) + std::strlen(kEnd); size + 2 < text.size(); ++size)
        EXPECT_THROW((void)Read(text.substr(0, size)), CPLYFileError) << size;
}

}  // namespace

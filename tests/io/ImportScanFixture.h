// A control that imports measurement files from a scratch folder.
#pragma once
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "io/ScanSample.h"
#include "support/ControlFixture.h"

inline constexpr char kNoMesh[] = "SetScanData(): CreateInternalMesh() returned nullptr\n";
inline constexpr std::int32_t kColor = 0x332211;

class ImportScan : public testing::Test {
protected:
    /// Writes the file and imports it.
    void Import(const ScanSample& scan, const std::string& name) {
        scan.Write(folder / name);
        Import(name);
    }
    void Import(const ScanBytes& bytes, const std::string& name) {
        WriteBytes(folder / name, bytes);
        Import(name);
    }
    void Import(const std::string& name) { c->ImportScan(KV_ScenePane::WidePath(folder / name).c_str(), kColor); }
    [[nodiscard]] const Mesh& Last() const { return *c->m_vpMeshes.back(); }
    [[nodiscard]] std::size_t Count() const { return c->m_vpMeshes.size(); }

    ScratchFolder folder;
    NoPictureControl c;
};

inline void ExpectBox(const Mesh& mesh, std::array<float, 6> box) {
    for (std::size_t i = 0; i < 6; ++i) EXPECT_FLOAT_EQ(mesh.m_fBoundingBox[i], box[i]) << "bound " << i;
}

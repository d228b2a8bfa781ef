// Measurement files (pcm): one gridded optical measurement with its pose. A site can replace libMSRDLL.so by a library
// of its own with the same class.
#pragma once
#include <cstdint>
#include <memory>

namespace MsrStorage {

/// One measurement in memory, empty at first: a grid of width x height pixels with a point, a confidence, a class and
/// perhaps a colour each, and the transform from the sensor to the world.
/// The Get...() pointers belong to the object and are valid until the next Load() or the destructor. Values that a
/// caller changes through them are the values that Save() writes. Arrays are row by row, pixel (x, y) at index y *
/// width + x. Not for two threads at once; different objects are independent. No operation throws. MsrLastReason()
/// returns why one failed.
class __attribute__((visibility("default"))) MSR {
public:
    MSR();
    ~MSR();
    MSR(const MSR&) = delete;
    MSR& operator=(const MSR&) = delete;

    /// Replaces the measurement by that of a pcm file. All checksums are checked. The flags have no effect in this
    /// library.
    /// @param path  decoded by KV_ScenePane::PathBytes(); may be null, which fails
    /// @return false when the file is missing, damaged or in another format; the measurement is empty then
    bool Load(const wchar_t* path, bool, bool, bool);
    /// Writes the measurement as a pcm file: beside the target, flushed to the disk, renamed over it. The flags have no
    /// effect in this library.
    /// @return false when the file cannot be written, and for an empty measurement; the old file is unchanged then
    bool Save(const wchar_t* path, bool, bool);
    /// Replaces the transform in a pcm file, as safely as Save(). The whole file is read and checked before.
    /// @param matrix  16 floats, row-major 4 x 4, sensor to world, translation in micrometres
    /// @return false when the file cannot be read or written; it is unchanged then
    static bool SaveTrafoMatrix(const wchar_t* path, const float* matrix);

    /// Points: x, y, z per pixel in micrometres, sensor frame. Null when the measurement is empty.
    float* GetXYZ();
    /// One confidence per pixel. Null when the measurement is empty.
    float* GetConfidence();
    /// One class per pixel; a pixel of class 240 and above is not valid. Null when the measurement is empty.
    std::uint8_t* GetPixelClassification();
    /// The transform: 16 floats, row-major 4 x 4, sensor to world, translation in micrometres. Null when empty.
    float* GetTrafo();
    /// Pixels per row; 0 when the measurement is empty.
    int GetWidth();
    /// Number of rows; 0 when the measurement is empty.
    int GetHeight();
    /// One colour per pixel, 0xAARRGGBB. Null when the measurement is empty or has no colours.
    std::uint32_t* GetColorData();

private:
    struct Data;
    std::unique_ptr<Data> m_pData;
};

}  // namespace MsrStorage

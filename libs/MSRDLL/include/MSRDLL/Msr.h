// Measurement files (pcm): one gridded optical measurement with its pose.
#pragma once
#include <cstdint>
#include <memory>

namespace MsrStorage {

/// One measurement in memory. Pointers that it hands out stay its own and valid until the next Load() or its end; what
/// is written through them is what Save() saves. Not for two threads at once; different objects are independent.
class __attribute__((visibility("default"))) MSR {
public:
    MSR();
    ~MSR();
    MSR(const MSR&) = delete;
    MSR& operator=(const MSR&) = delete;

    /// Reads a pcm file. A missing, foreign or damaged file gives false and leaves an empty measurement behind. The
    /// flags of this and of Save() mean nothing here.
    bool Load(const wchar_t* path, bool, bool, bool);
    /// Writes the measurement as a pcm file: beside the target, flushed to disk, renamed over it. On false the old file
    /// is whole. False too for an empty measurement.
    bool Save(const wchar_t* path, bool, bool);
    /// Replaces the transform in a pcm file (16 floats, row-major 4 x 4), as safely as Save().
    static bool SaveTrafoMatrix(const wchar_t* path, const float* matrix);

    float* GetXYZ();                         ///< 3 a pixel, row after row, sensor frame, micrometres; null when empty
    float* GetConfidence();                  ///< one a pixel
    std::uint8_t* GetPixelClassification();  ///< one a pixel; 240 and above are not valid
    float* GetTrafo();                       ///< 16, row-major 4 x 4, sensor to world, micrometres
    int GetWidth();
    int GetHeight();
    std::uint32_t* GetColorData();  ///< one a pixel, 0xAARRGGBB, or null

private:
    struct Data;
    std::unique_ptr<Data> m_pData;
};

}  // namespace MsrStorage

// Dims objects for the time of an alignment, so that the operator sees which ones cannot be moved or picked.
#pragma once
#include <cstdint>
#include <memory>
#include <vector>

#include "geometry/Mesh.h"

/// The colours of the objects that are dimmed at the moment. An object may be deleted or replaced meanwhile: only one
/// that still exists gets its colour back, also when the host has changed it.
class DimmedColors {
public:
    /// Divides each channel of the object colour by 3 and keeps the former colour. An object that is dimmed already
    /// stays as it is.
    void Dim(const std::shared_ptr<Mesh>& mesh);
    /// A copy of a dimmed object, such as what a cut leaves of it, gets the colour of its original back. Without effect
    /// for a copy of another object.
    void AddCopy(const Mesh& original, const std::shared_ptr<Mesh>& copy);
    /// Gives all of them their colours back and forgets them.
    void Restore();

private:
    struct SavedColor {
        std::weak_ptr<Mesh> mesh;
        std::uint32_t color = 0;  ///< 0x00BBGGRR
    };
    /// Null for an object that is not dimmed.
    [[nodiscard]] const SavedColor* Find(const Mesh& mesh) const;

    std::vector<SavedColor> m_vSavedColors;
};

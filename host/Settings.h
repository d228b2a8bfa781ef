// What the window remembers from one start to the next, in the user's configuration folder.
#pragma once
#include <QSettings>
#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "FileImport.h"
#include "KV_ScenePane/Modes.h"
#include "MouseScheme.h"

/// The file of the settings. Its values are untrusted.
[[nodiscard]] QSettings OpenSettings();
/// Everything that is remembered is forgotten.
void ForgetSettings();

/// Samples per pixel of a window with smooth edges, until the user chose another number.
inline constexpr int kSmoothSamples = 4;

/// Samples per pixel that the user wants, 0 for none; kSmoothSamples until the user chose otherwise.
[[nodiscard]] int StoredSamples();
/// For the windows of later starts: the samples of a viewer are fixed when it is made. @param samples  0, 2, 4 or 8
void StoreSamples(int samples);

/// The clip plane of the window. The first values are those of a first start.
struct ClipSettings {
    /// Objects are clipped.
    bool on = false;
    /// The plane is drawn while it clips, and the mouse can move it.
    bool shown = true;
    /// The user has moved the plane. One that nobody moved is placed at the data when clipping is switched on.
    bool moved = false;
    /// A point of the plane and the direction that is kept; scene units, world frame. The normal is not 0.
    std::array<float, 3> center{0, 0, 10}, normal{0, 0, 1};
    // 0x00BBGGRR. The viewer's own colours are black, which hides the handles on a dark background. Teal differs from
    // that background and from the colours of scans, yellow handles from both, and none is the colour of an axis.
    std::int32_t color = 0xC8A000, handleColor = 0x00E0FF, outlineColor = 0xFFFFFF;

    friend bool operator==(const ClipSettings&, const ClipSettings&) = default;
};

/// What was stored last. Values that are missing or not valid are those of a first start. A plane is valid as a whole,
/// and without a valid one nothing is clipped.
[[nodiscard]] ClipSettings StoredClip();
void StoreClip(const ClipSettings& clip);

/// The tints of a freehand lasso. The first values are those of the viewer.
struct LassoSettings {
    std::int32_t insideColor = 0x0000FF, outsideColor = 0x000000;  // 0x00BBGGRR
    int insideOpacity = 50, outsideOpacity = 0;                    // percent

    friend bool operator==(const LassoSettings&, const LassoSettings&) = default;
};

/// What was stored last. Values that are missing or not valid are those of a first start.
[[nodiscard]] LassoSettings StoredLasso();
void StoreLasso(const LassoSettings& lasso);

/// Whether drags of slow scenes are drawn reduced although the property of the viewer is off; true until the user chose
/// otherwise.
[[nodiscard]] bool IsReducedAutomatically();
void StoreReducedAutomatically(bool on);

/// The store of the viewer's properties that was written last, for ScenePane::LoadProperties(); nothing before the
/// first one. Its text is as untrusted as any file.
[[nodiscard]] std::optional<std::string> StoredProperties();
/// @param store  of ScenePane::SaveProperties() in the text format
void StoreProperties(const std::string& store);

/// How the view looks and answers to the mouse. The first values are those of the viewer.
struct ViewSettings {
    MouseScheme mouse = MouseScheme::Normal;
    KV_ScenePane::RotationMode rotation = KV_ScenePane::RotateFree;
    /// 0x00BBGGRR: top left, top right, bottom left, bottom right.
    std::array<std::int32_t, 4> background{0x321919, 0x321919, 0x321919, 0x321919};
    /// Pixels, kMinPointSize to kMaxPointSize.
    float pointSize = 2.0f;

    friend bool operator==(const ViewSettings&, const ViewSettings&) = default;
};
inline constexpr float kMinPointSize = 0.01f, kMaxPointSize = 64.0f;

/// What was stored last. Values that are missing or not valid are those of a first start.
[[nodiscard]] ViewSettings StoredView();
// One by one: another window may have stored the others.
void StoreMouseScheme(MouseScheme scheme);
void StoreRotation(KV_ScenePane::RotationMode mode);
void StoreBackground(const std::array<std::int32_t, 4>& colors);
void StorePointSize(float pixels);

/// What was stored last. Values that are missing or not valid are those of a first start.
[[nodiscard]] ImportSettings StoredImport();
// One by one: a value of the command line is for one window, and is not stored with another one that the user chose.
void StoreSkip(std::int16_t skip);
void StoreConfidence(float limit);
void StoreScanColor(std::int32_t color);

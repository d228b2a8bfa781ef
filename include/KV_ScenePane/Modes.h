// The modes that the methods of the automation surface take and return, as plain numbers of their own types: every
// enumerator converts to the argument that it is passed as.
#pragma once
#include <cstdint>

namespace KV_ScenePane {

/// How objects are drawn: SetDrawMode().
enum DrawMode : std::int16_t {
    DrawModePoints = 0,
    DrawModeWireframe = 1,
    DrawModeFlat = 2,
    DrawModeGouraud = 3,  ///< what a viewer starts with
    DrawModeBoundingBoxes = 4,
    DrawModePerPixel = 5,  ///< lit per pixel; the mode that shows shadows
    DrawModeNothing = 6,
    DrawModeShadowMap = 7,  ///< the depth that the shadows are computed from, for diagnosis
};

/// The eight fixed views: SetViewMode(). World axes; the viewer looks from the first towards the centre.
enum ViewMode : std::int16_t {
    ViewFromPlusYZUp = 0,
    ViewFromMinusYZUp = 1,
    ViewFromPlusXZUp = 2,
    ViewFromMinusXZUp = 3,
    ViewFromPlusZYUp = 4,  ///< what a viewer starts with
    ViewFromMinusZYDown = 5,
    ViewObliqueZUp = 6,
    ViewFromMinusZYUp = 7,
};

/// What a drag of the rotating button turns the scene about: SetRotationMode().
enum RotationMode : std::int16_t {
    RotateAboutHorizontal = 0,  ///< the horizontal axis of the screen
    RotateAboutVertical = 1,    ///< the vertical axis of the screen
    RotateAboutViewAxis = 2,    ///< the viewing axis
    RotateFree = 3,             ///< both axes of the screen, about a pivot; what a viewer starts with
};

/// What clicks report: SetPickMode().
enum PickMode : std::int16_t {
    PickModeOff = 0,
    PickModeCross = 1,          ///< the centre cross is drawn
    PickModeObjects = 2,        ///< clicks on objects fire SelectObjCoords
    PickModeObjectsSecond = 3,  ///< as PickModeObjects
    PickModeOffSecond = 4,      ///< as PickModeOff
    PickModePoints = 5,         ///< as PickModeObjects; a double click beside the objects does not move the view, and
                                ///< pick-point spheres are drawn
};

}  // namespace KV_ScenePane

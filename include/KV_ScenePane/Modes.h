// The modes that methods of the automation surface accept and return, as unscoped enums: every enumerator converts to
// the argument that it is passed as. The methods accept other numbers too; what these do is written at each method.
#pragma once
#include <cstdint>

namespace KV_ScenePane {

/// How objects are drawn: the property DrawMode. A viewer starts with DrawModeGouraud.
enum DrawMode : std::int16_t {
    /// One point per vertex.
    DrawModePoints = 0,
    /// The edges of the triangles.
    DrawModeWireframe = 1,
    /// Lit, one normal per triangle.
    DrawModeFlat = 2,
    /// Lit per vertex, interpolated over the triangle.
    DrawModeGouraud = 3,
    /// The bounding box of each object.
    DrawModeBoundingBoxes = 4,
    /// Lit per pixel. With shadows on it draws no objects.
    DrawModePerPixel = 5,
    /// Background, decorations and markers only.
    DrawModeNothing = 6,
    /// The depth map that shadows are computed from, for diagnosis.
    DrawModeShadowMap = 7,
};

/// The eight fixed views: SetViewMode(). "From" names the world axis on which the viewer is, "up" the world axis that
/// points to the top of the screen. A viewer starts with the frame of ViewFromPlusZYUp.
enum ViewMode : std::int16_t {
    ViewFromPlusYZUp = 0,
    ViewFromMinusYZUp = 1,
    ViewFromPlusXZUp = 2,
    ViewFromMinusXZUp = 3,
    ViewFromPlusZYUp = 4,
    /// ViewFromMinusZYUp upside down: X to the right of the screen.
    ViewFromMinusZYDown = 5,
    /// From between +X, +Y and +Z.
    ViewObliqueZUp = 6,
    ViewFromMinusZYUp = 7,
};

/// What a rotating drag turns the scene about: SetRotationMode(). A viewer starts with RotateFree.
enum RotationMode : std::int16_t {
    /// The horizontal axis of the screen.
    RotateAboutHorizontal = 0,
    /// The vertical axis of the screen.
    RotateAboutVertical = 1,
    /// The viewing axis.
    RotateAboutViewAxis = 2,
    /// Both axes of the screen, about a pivot in the scene.
    RotateFree = 3,
};

/// What a double click does: SetPickMode(). A viewer starts with PickModeOff. In the modes that fire SelectObjCoords a
/// single left click does the same after SetIGDRotation(1). With FlipMouseButtons() a double click does nothing of
/// this, and while SetNeedlePickingMode() is on it neither centres the view nor places the plane.
enum PickMode : std::int16_t {
    /// It centres the view; with Ctrl, while the clip plane is shown, it places the plane at the data instead.
    PickModeOff = 0,
    /// As PickModeOff, and the centre cross is drawn.
    PickModeCross = 1,
    /// On an object it fires SelectObjCoords; beside the objects it does as PickModeOff.
    PickModeObjects = 2,
    /// As PickModeObjects.
    PickModeObjectsSecond = 3,
    /// As PickModeOff.
    PickModeOffSecond = 4,
    /// On an object it fires SelectObjCoords; beside the objects it does nothing. Pick-point spheres are drawn after
    /// the first pick that has hit.
    PickModePoints = 5,
};

}  // namespace KV_ScenePane

/* Ids of the automation surface and the values of its modes. Made by generate-bindings from the automation
   table and the public headers of C++: do not edit. What the members do is in docs/automation.md. */
#ifndef KV_SCENEPANE_IDS_H
#define KV_SCENEPANE_IDS_H
/* clang-format off */

/* ---- methods */

#define KV_SetSize 4
#define KV_ClearData 5
#define KV_ClearUndoStack 6
#define KV_SetLassoCuttingColors 7
#define KV_DisplayClipPlanePartCloseToData 8
#define KV_FindNearestPickPointSphere 9
#define KV_RemovePickPointSphere 10
#define KV_GetPickPointSphereCoords 11
#define KV_GetNumberOfPickPointSpheres 12
#define KV_SetMaxNumberOfNeedles 13
#define KV_DeselectNeedle 14
#define KV_DeselectAllNeedles 15
#define KV_SelectNeedle 16
#define KV_RecreateOpenglContext 17
#define KV_SetPickMode 18
#define KV_GetPickMode 19
#define KV_SetCrossColor 20
#define KV_GetCrossColor 21
#define KV_GetViewDirection 22
#define KV_GetNumObjects 23
#define KV_GetObjectColor 24
#define KV_SetObjectColor 25
#define KV_StartSegmentation 26
#define KV_GetMeshDataSize 27
#define KV_ClearPickPointSpheres 28
#define KV_MovePickPointSphere 29
#define KV_PerformUndo 30
#define KV_ImportMesh 31
#define KV_ExportMesh 32
#define KV_ImportScan 33
#define KV_ShowLightingArrow 34
#define KV_SetArrowColor 35
#define KV_TracingMode 36
#define KV_FlipMouseButtons 37
#define KV_SetRotationMode 38
#define KV_SetViewMode 39
#define KV_ResetSelection 40
#define KV_AddSelection 41
#define KV_ResetVariableObjects 42
#define KV_AddVariableObject 43
#define KV_AlignInteractive 44
#define KV_AlignPickPoints 45
#define KV_PerformRefresh 46
#define KV_SetArrowAngle 47
#define KV_CenterView 48
#define KV_SetScanSkipVal 49
#define KV_GetTrafoOfScan 50
#define KV_SetObjectVisibility 51
#define KV_ShowAxes 52
#define KV_SetConfidenceFilter 53
#define KV_FinishInteraction 54
#define KV_SetBackgroundColors 55
#define KV_DeleteObject 56
#define KV_CreateNeedles 57
#define KV_DeleteNeedles 58
#define KV_GetObjectCenter 59
#define KV_SetViewParams 60
#define KV_AddPickPointSphere 61
#define KV_AllowMouseInteraction 62
#define KV_SaveCuttingToPcms 63
#define KV_SetIGDRotation 64
#define KV_SetReflection 65
#define KV_SetTrafoOfScan 66
#define KV_GetViewParams 67
#define KV_EndSegmentation 68
#define KV_SetShadowMode 69
#define KV_GetShadowMode 70
#define KV_SetBackgroundColorsFourCorners 71
#define KV_SetPickRadius 72
#define KV_PerformInvalidate 73
#define KV_GetObjectBoundingBox 74
#define KV_CreateNeedle 75
#define KV_BeginParallelImport 76
#define KV_EndParallelImport 77
#define KV_SetAllowEmptyObjects 78
#define KV_BlockPaintEvents 79
#define KV_SetMeshFilename_Removed 80
#define KV_SetLine3DDrawingMode 81
#define KV_GetLine3DDrawingMode 82
#define KV_CreateLine3D 83
#define KV_DeletePoints 84
#define KV_SetPointsVisibility 85
#define KV_ImportPoints 86
#define KV_GetScanSkipVal 87
#define KV_SetBlendObjectColors 88
#define KV_SetShadowColor 89
#define KV_ImportMeshedMeasurement 90
#define KV_StartAnimation 91
#define KV_StopAnimation 92
#define KV_ToggleAnimationOnSpacebar 93
#define KV_IsAnimationRunning 94
#define KV_SetAnimationSpeed 95
#define KV_SetPointCloudRenderPointSize 96
#define KV_CaptureScreenShot 97
#define KV_GetScreenShotResolution 98
#define KV_AddOverlayData 99
#define KV_SetOverlayVisibility 100
#define KV_SetDefaultZoomFactor 101
#define KV_SetClipPlaneEnabled 102
#define KV_SetClipPlaneDisabled 103
#define KV_SetClipPlane 104
#define KV_SetClipPlaneColor 105
#define KV_GetClipPlane 106
#define KV_SetNeedlePickingMode 107
#define KV_SetNeedleDrawingMode 108
#define KV_SetNeedleRenderParameters 109
#define KV_GetNeedlePickingMode 110
#define KV_GetNeedleDrawingMode 111
#define KV_DeleteNeedle 112
#define KV_GetNumberOfNeedles 113
#define KV_GetNeedle 114
#define KV_GetNeedles 115
#define KV_ImportMeasurementFromMemory 116
#define KV_ImportMeshFromMemory 117
#define KV_GetCutMasks 118
#define KV_ClearCutMasks 119
#define KV_InitializeKVReg 120
#define KV_FinalizeKVReg 121
#define KV_SetHpsSourceApp 122
#define KV_AboutBox (-552)
#define KV_METHOD_COUNT 120

/* ---- properties */

#define KV_PROPERTY_DrawMosaic 1
#define KV_PROPERTY_DrawMode 2
#define KV_PROPERTY_MoveReduced 3
#define KV_PROPERTY_ReadyState (-525)
#define KV_PROPERTY_COUNT 4

/* ---- events */

#define KV_EVENT_ReadyStateChange (-609)
#define KV_EVENT_SelectViewDirection 1
#define KV_EVENT_SelectObjCoords 2
#define KV_EVENT_SegmentationDone 3
#define KV_EVENT_ViewDirectionChanged 4
#define KV_EVENT_AlignmentDone 5
#define KV_EVENT_NeedleCreated 6
#define KV_EVENT_NeedleSelected 7
#define KV_EVENT_NeedleDeleted 8
#define KV_EVENT_NeedleDeselected 9
#define KV_EVENT_CustomKeyDown 10
#define KV_EVENT_PickPointCountChanged 11
#define KV_EVENT_CutMaskApplied 12
#define KV_EVENT_COUNT 13

/* ---- values of modes */

/* How objects are drawn: the property DrawMode. A viewer starts with DrawModeGouraud. */
#define KV_DrawModePoints 0 /* One point per vertex. */
#define KV_DrawModeWireframe 1 /* The edges of the triangles. */
#define KV_DrawModeFlat 2 /* Lit, one normal per triangle. */
#define KV_DrawModeGouraud 3 /* Lit per vertex, interpolated over the triangle. */
#define KV_DrawModeBoundingBoxes 4 /* The bounding box of each object. */
#define KV_DrawModePerPixel 5 /* Lit per pixel. With shadows on it draws no objects. */
#define KV_DrawModeNothing 6 /* Background, decorations and markers only. */
#define KV_DrawModeShadowMap 7 /* The depth map that shadows are computed from, for diagnosis. */

/* The eight fixed views: SetViewMode(). "From" names the world axis on which the viewer is, "up" the world axis that
   points to the top of the screen. A viewer starts with the frame of ViewFromPlusZYUp. */
#define KV_ViewFromPlusYZUp 0
#define KV_ViewFromMinusYZUp 1
#define KV_ViewFromPlusXZUp 2
#define KV_ViewFromMinusXZUp 3
#define KV_ViewFromPlusZYUp 4
#define KV_ViewFromMinusZYDown 5 /* ViewFromMinusZYUp upside down: X to the right of the screen. */
#define KV_ViewObliqueZUp 6 /* From between +X, +Y and +Z. */
#define KV_ViewFromMinusZYUp 7

/* What a rotating drag turns the scene about: SetRotationMode(). A viewer starts with RotateFree. */
#define KV_RotateAboutHorizontal 0 /* The horizontal axis of the screen. */
#define KV_RotateAboutVertical 1 /* The vertical axis of the screen. */
#define KV_RotateAboutViewAxis 2 /* The viewing axis. */
#define KV_RotateFree 3 /* Both axes of the screen, about a pivot in the scene. */

/* What a double click does: SetPickMode(). A viewer starts with PickModeOff. In the modes that fire SelectObjCoords
   a single left click does the same after SetIGDRotation(1). With FlipMouseButtons() a double click does nothing of
   this, and while SetNeedlePickingMode() is on it neither centres the view nor places the plane. */
/* It centres the view; with Ctrl, while the clip plane is shown, it places the plane at the data instead. */
#define KV_PickModeOff 0
#define KV_PickModeCross 1 /* As PickModeOff, and the centre cross is drawn. */
#define KV_PickModeObjects 2 /* On an object it fires SelectObjCoords; beside the objects it does as PickModeOff. */
#define KV_PickModeObjectsSecond 3 /* As PickModeObjects. */
#define KV_PickModeOffSecond 4 /* As PickModeOff. */
/* On an object it fires SelectObjCoords; beside the objects it does nothing. Pick-point spheres are drawn after the
   first pick that has hit. */
#define KV_PickModePoints 5

/* The ways to cut: StartSegmentation(). A polygon is drawn by clicks; a freehand lasso by drags and clicks. */
#define KV_PolygonOutside 0 /* Removes what lies outside the lasso. */
#define KV_PolygonInside 1 /* Removes what lies inside the lasso, also what is hidden there. */
#define KV_PolygonVisible 2 /* Removes what is visible inside the lasso. */
#define KV_FreehandOutside 3
#define KV_FreehandInside 4
#define KV_FreehandVisible 5

#endif

// The hidden window object that owns a running alignment.
#pragma once

class CInteractionDlg {
public:
    virtual ~CInteractionDlg() = default;
    /// Ends the interaction; the object forgets itself from the control.
    virtual void Finish() = 0;
    /// Draws over the scene; the rendering context is current.
    virtual void DrawInteraction() {}
};

// A note over the view where its picture shows nothing, and why it does.
#pragma once
#include <QLabel>
#include <QString>
#include <functional>

/// What the note depends on.
struct ViewNoteState {
    bool hasViewer = false;
    bool isBusy = false;  ///< an import runs: what it has read is not shown yet
    int objects = 0;
    int visibleObjects = 0;
    bool hasMarks = false;  ///< free points, lines or needles
    int drawMode = 3;       ///< of KV_ScenePane::DrawMode, or another number
    bool shadows = false;
    bool isAllClipped = false;  ///< the clip plane cuts every visible object away
};

/// Empty while the picture shows something.
[[nodiscard]] QString NoteOf(const ViewNoteState& state);

/// Whether the render mode draws objects without shadows and none while shadows are on.
[[nodiscard]] bool IsBlankWithShadows(int drawMode);

/// A small window over another native one. It is not in the pictures of the viewer and gets no input of the mouse:
/// clicks and drags go to the viewer below.
class ViewNote : public QLabel {
    Q_OBJECT
public:
    /// @param view    the widget that the note is centred over; a sibling
    /// @param state   returns the present state
    ViewNote(QWidget& view, std::function<ViewNoteState()> state, QWidget* parent);
    /// Checks the state when control is back in the event loop; further calls before that cost nothing.
    void CheckLater();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Check();
    /// In the middle of the view, and no wider.
    void Place();

    QWidget& m_view;
    const std::function<ViewNoteState()> m_state;
    bool m_bWillCheck = false;
};

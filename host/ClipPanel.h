// The clip plane: its switches, its position as numbers that can be edited, and its colours.
#pragma once
#include <QWidget>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "KV_ScenePane/ScenePane.h"
#include "Settings.h"

class ColorButton;
class NumberBox;
class QCheckBox;
class QLabel;
class QLayout;

/// Calls the viewer itself and follows what the mouse and the keys do there. A plane that the user has moved stays
/// where it is when clipping is switched off and on, in this window and in later ones; a plane that nobody has moved is
/// placed at the data when clipping is switched on, and with the first objects of a scene.
class ClipPanel : public QWidget {
    Q_OBJECT
public:
    /// @param settings  applied to each viewer that the panel is given
    explicit ClipPanel(const ClipSettings& settings, QWidget* parent = nullptr);
    /// @param viewer  must outlive the panel or be replaced by null; null disables the panel, which keeps its settings
    void SetViewer(KV_ScenePane::ScenePane* viewer);
    /// @param isHidden  whether the user has hidden the object with this index; without it no object is hidden
    void SetHiddenObjects(std::function<bool(int index)> isHidden) { m_isHidden = std::move(isHidden); }

    /// The present ones. With a viewer they are what the viewer shows, as of the last FollowViewer().
    [[nodiscard]] const ClipSettings& Settings() const { return m_settings; }
    /// With a viewer.
    [[nodiscard]] bool IsClipping() const { return m_pViewer != nullptr && m_settings.on; }
    /// The plane removes, or would remove, every object that is not hidden, and there is one.
    [[nodiscard]] bool CutsAwayAll() const;

    // What the user does; nothing happens without a viewer.
    void SwitchClipping(bool on);
    void SwitchPlane(bool shown);
    /// Switches clipping on. Reports a failure.
    void PlaceAtData();
    /// Turns the plane about its centre. @param axis  0 to 2: the side of +x, +y or +z is kept
    void AlignNormal(std::size_t axis);
    /// Keeps the other side.
    void Flip();
    /// The settings of a first start.
    void Reset();
    /// Hides the plane in the viewer, or shows it again if it was shown. It stays where it is, and so do the settings.
    void HideInViewer(bool isHidden);

    // What happened in the viewer.
    /// An input arrived by which it may place the plane at the data.
    void ExpectPlacement() { m_bExpectsPlacement = true; }
    /// It has handled input and drawn frames. No event reports that the plane was moved.
    void FollowViewer();
    /// Objects were added, removed, hidden or shown.
    void FollowScene();

signals:
    /// Settings() has changed.
    void Changed();
    /// What the user must know about the plane.
    void Report(const QString& text);

private:
    using Point = std::array<float, 3>;
    struct Box {
        Point low{}, high{};
    };
    struct Position {
        Point center{}, normal{};
        friend bool operator==(const Position&, const Position&) = default;
    };
    /// What the last placement at the data found. Failed: it threw.
    enum class Outcome { None, Found, NotFound, Failed };

    void MakeSwitches();
    QLayout* MakeNumbers();
    QLayout* MakeDirections();
    QLayout* MakeColors();
    void Arrange();

    void EditCenter(std::size_t axis, double value);
    void EditNormal();
    /// The keyboard has left the fields of the normal, or Return was pressed: they show the unit vector of the viewer.
    void EndNormalEdit();
    /// Of the fields, of any length.
    [[nodiscard]] Point TypedNormal() const;
    /// Sets a plane that the user wants; the settings are then what the viewer made of it. The fields stay.
    void Move(const Position& wanted);

    /// Colours, switches and position of the settings.
    void ApplyAll();
    void ApplyColors();
    /// Switches and position.
    void ApplyPlane();
    /// Clips and lets the viewer place the plane. Reports an exception, and a height that was not found.
    void Place();
    [[nodiscard]] Position InSettings() const { return {m_settings.center, m_settings.normal}; }
    /// Of the viewer; of the settings when a coordinate is not finite.
    [[nodiscard]] Position ReadPosition() const;
    /// Stores a position of the viewer in the settings; the fields show what differs.
    /// @param edited  a field that is not written, because the user is typing in it
    void StorePosition(const Position& position, const NumberBox* edited = nullptr);
    /// Whether a horizontal plane is at the height of the last placement at the data.
    [[nodiscard]] bool IsAtFoundHeight(const Position& position) const;
    /// Stores the outcome of the placement that the viewer has just made; reports a height that was not found.
    void StorePlacement();
    /// The plane is no longer where a placement left it that found nothing or threw.
    void ForgetFailedPlacement();
    /// The height of the last placement or why there is none; empty before.
    [[nodiscard]] QString PlacementText() const;
    /// Reads the boxes of the objects that are not hidden.
    void ReadBoxes();
    /// Whether the plane is where a height that was found has placed it.
    [[nodiscard]] bool IsWherePlaced() const;
    /// Reports it, once until the plane or the scene is another one.
    void WarnIfAllIsCutAway();

    void ShowSwitches();
    /// Switches and numbers.
    void ShowSettings();
    /// The most important of what is to say.
    void ShowText();
    /// What the panel shows follows the settings, which have changed.
    void ShowChange();

    KV_ScenePane::ScenePane* m_pViewer = nullptr;
    ClipSettings m_settings;
    bool m_bExpectsPlacement = false;
    bool m_bHasObjects = false;  // as FollowScene() found it
    bool m_bCutAwayReported = false;
    bool m_bNormalMarked = false;
    std::function<bool(int index)> m_isHidden = [](int) { return false; };
    std::vector<Box> m_vBoxes;  // of the shown objects that have one
    Outcome m_outcome = Outcome::None;
    QString m_failure;  // of Outcome::Failed: why
    /// Where nobody has moved the plane; a drag that leads back there does not count. Empty when fields, buttons or an
    /// earlier start have set the plane.
    std::optional<Position> m_unmoved;
    QCheckBox *m_pOn, *m_pShown;
    std::vector<NumberBox*> m_vCenter, m_vNormal;
    std::vector<std::pair<ColorButton*, std::int32_t ClipSettings::*>> m_vColors;
    QLabel* m_pText;
};

// Each control changes the viewer at once. The viewer rounds and normalises what it is given and reports no change, so
// the position is read back after each change and after each frame; a field is written only when the viewer's value has
// changed by something else than the field itself. The controls are made in ClipPanelParts.cpp.
#include "ClipPanel.h"

#include <QCheckBox>
#include <QLabel>
#include <QSignalBlocker>
#include <algorithm>
#include <cmath>

#include "CaughtError.h"
#include "ClipCut.h"
#include "ColorButton.h"
#include "NumberBox.h"
#include "PaintBlock.h"
#include "SceneReport.h"
#include "TranslatedText.h"

namespace {

/// Rounded to the digits that a float has; never -0.
double Shown(float value) {
    if (value == 0.0f) return 0.0;
    const double exact = static_cast<double>(value);
    const int decimals = std::clamp(5 - static_cast<int>(std::floor(std::log10(std::abs(exact)))), 0, 6);
    const double scale = std::pow(10.0, decimals);
    return std::round(exact * scale) / scale + 0.0;
}

void ShowNumbers(const std::vector<NumberBox*>& boxes, const std::array<float, 3>& values,
                 const NumberBox* edited = nullptr) {
    for (std::size_t axis = 0; axis < boxes.size(); ++axis) {
        if (boxes[axis] == edited) continue;
        const QSignalBlocker quiet(boxes[axis]);
        boxes[axis]->setValue(Shown(values[axis]));
    }
}

/// Whether both centres are in one surface with this normal, up to rounding: each number has half a unit in the last
/// place of a float, and the viewer has calculated with doubles.
bool AreInOneSurface(const std::array<float, 3>& normal, const std::array<float, 3>& a, const std::array<float, 3>& b) {
    constexpr double kFloat = 0x1p-24, kDouble = 1e-12;
    double offset = 0.0, limit = 0.0;
    for (std::size_t i = 0; i < 3; ++i) {
        const double n = static_cast<double>(normal[i]);
        const double difference = static_cast<double>(a[i]) - static_cast<double>(b[i]);
        const double size = std::abs(static_cast<double>(a[i])) + std::abs(static_cast<double>(b[i]));
        offset += n * difference;
        limit += std::abs(n) * kFloat * (size + std::abs(difference)) + kDouble * size;
    }
    return std::abs(offset) <= limit;
}

bool IsFinite(const std::array<float, 3>& point) {
    return std::all_of(point.begin(), point.end(), [](float value) { return std::isfinite(value); });
}

QString RuleText(KV_ScenePane::ClipHeightKind kind) {
    switch (kind) {
        case KV_ScenePane::HeightFromAllPoints:
            return ClipPanel::tr("mean of all points");
        case KV_ScenePane::HeightFlatSpot:
            return ClipPanel::tr("above a flat spot");
        case KV_ScenePane::HeightCurvedSpot:
            return ClipPanel::tr("below a curved spot");
        case KV_ScenePane::HeightNotDecided:
            break;
    }
    return ClipPanel::tr("unknown rule");
}

/// @param isPlaced  the plane is where the data has placed it: placing it again would not help
QString CutAwayText(bool isPlaced) {
    return isPlaced ? ClipPanel::tr("The clip plane cuts away all objects: move it, flip it, or switch clipping off.")
                    : ClipPanel::tr(
                          "The clip plane cuts away all objects: flip it, place it at the data, or switch "
                          "clipping off.");
}

QString NoObjectsText() {
    return ClipPanel::tr("There are no objects: the clip plane is placed at the first ones that are opened.");
}

}  // namespace

void ClipPanel::SetViewer(KV_ScenePane::ScenePane* viewer) {
    m_pViewer = viewer;
    setEnabled(viewer != nullptr);
    m_bExpectsPlacement = false;
    m_outcome = Outcome::None;
    m_unmoved.reset();
    m_vBoxes.clear();
    m_bHasObjects = false;
    if (viewer != nullptr) {
        ReadBoxes();
        ApplyAll();
    }
    ShowChange();
}

// ---- what the user does

void ClipPanel::SwitchClipping(bool on) {
    if (m_pViewer == nullptr || on == m_settings.on) return;
    FollowViewer();
    m_settings.on = on;
    if (on && !m_settings.moved)
        Place();
    else
        ApplyPlane();
    if (on)
        WarnIfAllIsCutAway();
    else
        ForgetFailedPlacement();
    ShowChange();
}

void ClipPanel::SwitchPlane(bool shown) {
    if (m_pViewer == nullptr || shown == m_settings.shown) return;
    FollowViewer();
    m_settings.shown = shown;
    ApplyPlane();
    ShowChange();
}

void ClipPanel::PlaceAtData() {
    if (m_pViewer == nullptr) return;
    FollowViewer();
    Place();
    ShowChange();
}

void ClipPanel::AlignNormal(std::size_t axis) {
    if (m_pViewer == nullptr) return;
    FollowViewer();
    Position wanted{m_settings.center, {}};
    wanted.normal.at(axis) = 1;
    Move(wanted);
    EndNormalEdit();
}

void ClipPanel::Flip() {
    if (m_pViewer == nullptr) return;
    FollowViewer();
    const Point& normal = m_settings.normal;
    Move({m_settings.center, {0 - normal[0], 0 - normal[1], 0 - normal[2]}});
    EndNormalEdit();
}

void ClipPanel::Reset() {
    if (m_pViewer == nullptr) return;
    m_settings = {};
    m_outcome = Outcome::None;
    ApplyAll();
    ShowChange();
}

void ClipPanel::EditCenter(std::size_t axis, double value) {
    if (m_pViewer == nullptr) return;
    StorePosition(ReadPosition(), m_vCenter.at(axis));  // it may have changed since the last frame
    Position wanted = InSettings();
    wanted.center.at(axis) = static_cast<float>(value);
    Move(wanted);
}

void ClipPanel::EditNormal() {
    if (m_pViewer == nullptr) return;
    const Point typed = TypedNormal();
    if (typed == Point{}) {
        ShowText();  // no direction: the plane stays
        return;
    }
    const Point center = ReadPosition().center;
    if (center != m_settings.center) ShowNumbers(m_vCenter, center);
    Move({center, typed});
}

void ClipPanel::EndNormalEdit() {
    ShowNumbers(m_vNormal, m_settings.normal);
    ShowText();
}

ClipPanel::Point ClipPanel::TypedNormal() const {
    Point typed{};
    for (std::size_t axis = 0; axis < typed.size(); ++axis) typed[axis] = static_cast<float>(m_vNormal[axis]->value());
    return typed;
}

// ---- changes of the viewer

void ClipPanel::Move(const Position& wanted) {
    const auto& [x, y, z] = wanted.center;
    const auto& [normalX, normalY, normalZ] = wanted.normal;
    m_pViewer->Methods().SetClipPlane(x, y, z, normalX, normalY, normalZ);
    const Position now = ReadPosition();
    m_settings.center = now.center;
    m_settings.normal = now.normal;
    m_settings.moved = true;
    m_unmoved.reset();
    m_bExpectsPlacement = false;
    ForgetFailedPlacement();
    ShowChange();
}

void ClipPanel::ApplyAll() {
    const PaintBlock block(m_pViewer->Methods());  // each call would draw a frame
    ApplyColors();
    ApplyPlane();
    EndNormalEdit();
}

void ClipPanel::ApplyColors() {
    m_pViewer->Methods().SetClipPlaneColor(m_settings.color, m_settings.handleColor, m_settings.outlineColor);
    for (const auto& [button, color] : m_vColors) button->SetPacked(m_settings.*color);
}

void ClipPanel::ApplyPlane() {
    KV_ScenePane::_DKV_ScenePane& methods = m_pViewer->Methods();
    if (m_settings.on) {
        try {
            methods.SetClipPlaneEnabled(m_settings.shown ? 1 : 0);
        } catch (...) {
            // A plane that is shown is placed at the data first. That it failed does not matter: the position that the
            // user wants is set below, and the switches are set already.
        }
    } else {
        methods.SetClipPlaneDisabled();
    }
    const auto& [x, y, z] = m_settings.center;
    const auto& [normalX, normalY, normalZ] = m_settings.normal;
    methods.SetClipPlane(x, y, z, normalX, normalY, normalZ);
    StorePosition(ReadPosition());
    if (!m_settings.moved) m_unmoved = InSettings();
}

void ClipPanel::HideInViewer(bool isHidden) {
    if (m_pViewer == nullptr || !m_settings.on || !m_settings.shown) return;
    KV_ScenePane::_DKV_ScenePane& methods = m_pViewer->Methods();
    const auto [center, normal] = ReadPosition();  // before the plane is placed at the data
    if (isHidden) {
        methods.SetClipPlaneEnabled(0);
        return;
    }
    try {
        methods.SetClipPlaneEnabled(1);
    } catch (...) {
        // The placement failed, which does not matter: the position follows.
    }
    methods.SetClipPlane(center[0], center[1], center[2], normal[0], normal[1], normal[2]);
}

void ClipPanel::Place() {
    KV_ScenePane::_DKV_ScenePane& methods = m_pViewer->Methods();
    QString failure;
    try {
        methods.SetClipPlaneEnabled(1);
    } catch (...) {  // no exception may pass through Qt
        failure = TranslatedText(TextOfCaughtError());
    }
    m_settings.on = true;
    if (!m_settings.shown) methods.SetClipPlaneEnabled(0);  // a hidden plane is not placed
    methods.PerformInvalidate();                            // an exception leaves no repaint
    StorePosition(ReadPosition());
    if (failure.isEmpty()) {
        StorePlacement();
    } else {
        m_outcome = Outcome::Failed;
        m_failure = failure;
        emit Report(tr("The clip plane was not placed at the data: %1. Clipping is on, and the plane is where it was.")
                        .arg(failure));
    }
}

bool ClipPanel::IsWherePlaced() const { return m_outcome == Outcome::Found && !m_settings.moved; }

ClipPanel::Position ClipPanel::ReadPosition() const {
    Position p;
    m_pViewer->Methods().GetClipPlane(&p.center[0], &p.center[1], &p.center[2], &p.normal[0], &p.normal[1],
                                      &p.normal[2]);
    if (!IsFinite(p.center) || !IsFinite(p.normal)) return {m_settings.center, m_settings.normal};
    return p;
}

bool ClipPanel::IsAtFoundHeight(const Position& position) const {
    return position.normal == Point{0, 0, 1} && position.center[2] == m_pViewer->GetClipHeight().height;
}

void ClipPanel::StorePlacement() {
    m_settings.moved = false;
    m_unmoved = InSettings();
    const bool hasObjects = m_pViewer->Methods().GetNumObjects() > 0;
    m_outcome = !hasObjects ? Outcome::None : m_pViewer->GetClipHeight().found ? Outcome::Found : Outcome::NotFound;
    if (m_outcome != Outcome::Found) emit Report(hasObjects ? PlacementText() : NoObjectsText());
}

void ClipPanel::ForgetFailedPlacement() {
    if (m_outcome != Outcome::Found) m_outcome = Outcome::None;
}

// ---- what happened in the viewer

void ClipPanel::FollowViewer() {
    if (m_pViewer == nullptr) return;
    const Position now = ReadPosition(), before = InSettings();
    const bool isPlaced = m_bExpectsPlacement && IsAtFoundHeight(now);
    // A placement may leave the plane where it is.
    const bool isNews = isPlaced && (m_settings.moved || m_outcome == Outcome::None);
    if (now == before && !isNews) return;
    // A view that is fitted slides the plane within its own surface.
    const auto isSameSurface = [&](const Position& other) {
        return now.normal == other.normal && AreInOneSurface(now.normal, now.center, other.center);
    };
    StorePosition(now);
    if (isPlaced) {
        StorePlacement();
    } else if (m_unmoved) {  // not only since the last frame: a slow drag moves it by little from frame to frame
        m_settings.moved = !isSameSurface(*m_unmoved);
        if (m_settings.moved) ForgetFailedPlacement();
    }
    // Not with a plane that has stayed: a press of the mouse may be delayed.
    if (!isSameSurface(before)) m_bExpectsPlacement = false;
    ShowChange();
}

void ClipPanel::StorePosition(const Position& position, const NumberBox* edited) {
    const bool hasTurned = position.normal != m_settings.normal;
    m_settings.center = position.center;
    m_settings.normal = position.normal;
    ShowNumbers(m_vCenter, m_settings.center, edited);
    if (hasTurned) ShowNumbers(m_vNormal, m_settings.normal);
}

void ClipPanel::FollowScene() {
    if (m_pViewer == nullptr) return;
    FollowViewer();
    const bool hadObjects = m_bHasObjects;
    ReadBoxes();
    if (!m_bHasObjects) m_outcome = Outcome::None;
    // Nobody has chosen the place of the plane yet, or the place was one in a scene that is gone.
    const bool isFirst = !hadObjects && m_bHasObjects;
    if (m_settings.on && isFirst && !m_settings.moved) Place();
    WarnIfAllIsCutAway();
    ShowChange();
}

void ClipPanel::ReadBoxes() {
    m_vBoxes.clear();
    KV_ScenePane::_DKV_ScenePane& methods = m_pViewer->Methods();
    const std::int16_t count = methods.GetNumObjects();
    m_bHasObjects = count > 0;
    m_vBoxes.reserve(static_cast<std::size_t>(count));
    for (std::int16_t i = 0; i < count; ++i) {
        if (m_isHidden(i)) continue;
        Box box;
        methods.GetObjectBoundingBox(i, &box.low[0], &box.high[0], &box.low[1], &box.high[1], &box.low[2],
                                     &box.high[2]);
        if (box.low[0] <= box.high[0]) m_vBoxes.push_back(box);  // an object without vertices has none
    }
}

bool ClipPanel::CutsAwayAll() const {
    return !m_vBoxes.empty() && std::all_of(m_vBoxes.begin(), m_vBoxes.end(), [this](const Box& box) {
        return IsCutAway(box.low, box.high, m_settings.center, m_settings.normal);
    });
}

void ClipPanel::WarnIfAllIsCutAway() {
    if (m_bCutAwayReported || !IsClipping() || !CutsAwayAll()) return;
    m_bCutAwayReported = true;
    emit Report(CutAwayText(IsWherePlaced()));
}

// ---- what is shown

QString ClipPanel::PlacementText() const {
    if (m_outcome == Outcome::Failed) return tr("Not placed at the data: %1").arg(m_failure);
    if (m_outcome == Outcome::None)
        return IsClipping() && !m_bHasObjects && !m_settings.moved ? NoObjectsText() : QString();
    const KV_ScenePane::ClipHeight height = m_pViewer->GetClipHeight();
    const QString number = QString::fromStdString(NumberText(height.height));
    if (m_outcome == Outcome::NotFound)
        return tr("No height was found in the data: the clip plane is at z = %1.").arg(number);
    return tr("Height found in the data: %1 (%2)").arg(number, RuleText(height.kind));
}

void ClipPanel::ShowSwitches() {
    const QSignalBlocker quietOn(m_pOn), quietShown(m_pShown);
    m_pOn->setChecked(m_settings.on);
    m_pShown->setChecked(m_settings.shown);
}

void ClipPanel::ShowSettings() {
    ShowSwitches();
    ShowNumbers(m_vCenter, m_settings.center);
    ShowNumbers(m_vNormal, m_settings.normal);
}

void ClipPanel::ShowText() {
    const bool isZero = TypedNormal() == Point{};
    QStringList texts;
    if (isZero)
        texts << tr("A normal of 0, 0, 0 has no direction: the plane stays as it is.");
    else if (IsClipping() && CutsAwayAll())
        texts << CutAwayText(IsWherePlaced());
    QFont font = m_pText->font();
    font.setBold(!texts.isEmpty());
    m_pText->setFont(font);
    if (const QString placement = PlacementText(); !placement.isEmpty()) texts << placement;
    m_pText->setText(texts.join('\n'));
    if (m_bNormalMarked == isZero) return;
    m_bNormalMarked = isZero;
    QPalette palette;
    if (isZero) {
        palette.setColor(QPalette::Base, QColor(0xFF, 0xC8, 0xC8));
        palette.setColor(QPalette::Text, Qt::black);
    }
    for (NumberBox* const box : m_vNormal) box->setPalette(palette);
}

void ClipPanel::ShowChange() {
    if (!IsClipping() || !CutsAwayAll()) m_bCutAwayReported = false;
    ShowSwitches();
    ShowText();
    emit Changed();
}

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
#include "ColorButton.h"
#include "NumberBox.h"
#include "PaintBlock.h"
#include "SceneReport.h"

namespace {

/// Rounded to the digits that a float has; never -0.
double Shown(float value) {
    if (value == 0.0f) return 0.0;
    const double exact = static_cast<double>(value);
    const int decimals = std::clamp(5 - static_cast<int>(std::floor(std::log10(std::abs(exact)))), 0, 6);
    const double scale = std::pow(10.0, decimals);
    return std::round(exact * scale) / scale + 0.0;
}

void ShowNumbers(const std::vector<NumberBox*>& boxes, const std::array<float, 3>& values) {
    for (std::size_t axis = 0; axis < boxes.size(); ++axis) {
        const QSignalBlocker quiet(boxes[axis]);
        boxes[axis]->setValue(Shown(values[axis]));
    }
}

/// Length of the point along a direction.
double Along(const std::array<float, 3>& normal, const std::array<float, 3>& point) {
    double sum = 0.0;
    for (std::size_t i = 0; i < 3; ++i) sum += static_cast<double>(normal[i]) * static_cast<double>(point[i]);
    return sum;
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

QString CutAwayText() {
    return ClipPanel::tr(
        "The clip plane cuts away all objects: flip it, place it at the data, or switch clipping off.");
}

}  // namespace

void ClipPanel::SetViewer(KV_ScenePane::ScenePane* viewer) {
    m_pViewer = viewer;
    setEnabled(viewer != nullptr);
    m_bExpectsPlacement = false;
    m_placement.clear();
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
    if (on) WarnIfAllIsCutAway(true);
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
    m_placement.clear();
    ApplyAll();
    ShowChange();
}

void ClipPanel::EditCenter(std::size_t axis, double value) {
    if (m_pViewer == nullptr) return;
    FollowViewer();
    Position wanted{m_settings.center, m_settings.normal};
    wanted.center.at(axis) = static_cast<float>(value);
    Move(wanted);
}

void ClipPanel::EditNormal() {
    if (m_pViewer == nullptr) return;
    const Point typed = TypedNormal();
    if (typed == Point{})
        ShowText();  // no direction: the plane stays
    else
        Move({m_settings.center, typed});
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
    TakePosition(ReadPosition());
}

void ClipPanel::Place() {
    KV_ScenePane::_DKV_ScenePane& methods = m_pViewer->Methods();
    QString failure;
    try {
        methods.SetClipPlaneEnabled(1);
    } catch (...) {  // no exception may pass through Qt
        failure = QString::fromStdString(TextOfCaughtError());
    }
    m_settings.on = true;
    if (!m_settings.shown) methods.SetClipPlaneEnabled(0);  // a hidden plane is not placed
    methods.PerformInvalidate();                            // an exception leaves no repaint
    TakePosition(ReadPosition());
    if (failure.isEmpty()) {
        DescribePlacement();
    } else {
        m_placement = tr("Not placed at the data: %1").arg(failure);
        emit Report(tr("Clipping is on with the plane as it was, it was not placed at the data: %1").arg(failure));
    }
}

ClipPanel::Position ClipPanel::ReadPosition() const {
    Position p;
    m_pViewer->Methods().GetClipPlane(&p.center[0], &p.center[1], &p.center[2], &p.normal[0], &p.normal[1],
                                      &p.normal[2]);
    if (!IsFinite(p.center) || !IsFinite(p.normal)) return {m_settings.center, m_settings.normal};
    return p;
}

void ClipPanel::DescribePlacement() {
    const KV_ScenePane::ClipHeight height = m_pViewer->GetClipHeight();
    const QString number = QString::fromStdString(NumberText(height.height));
    m_settings.moved = false;
    m_placement = tr("Height found in the data: %1 (%2)").arg(number, RuleText(height.kind));
    if (height.found) return;
    m_placement = m_pViewer->Methods().GetNumObjects() > 0
                      ? tr("No height was found in the data: the clip plane is at z = %1.").arg(number)
                      : tr("There are no objects: the clip plane is placed at the first ones that are opened.");
    emit Report(m_placement);
}

// ---- what happened in the viewer

void ClipPanel::FollowViewer() {
    if (m_pViewer == nullptr) return;
    const Position now = ReadPosition();
    const Position before{m_settings.center, m_settings.normal};
    if (now == before) return;
    const KV_ScenePane::ClipHeight height = m_pViewer->GetClipHeight();
    const bool isPlaced = m_bExpectsPlacement && now.normal == Point{0, 0, 1} && now.center[2] == height.height;
    // A view that is fitted slides the plane within its own surface, by no more than floats can tell.
    const double offset = Along(now.normal, now.center) - Along(now.normal, before.center);
    const float largest =
        std::max({1.0f, std::abs(now.center[0]), std::abs(now.center[1]), std::abs(now.center[2]),
                  std::abs(before.center[0]), std::abs(before.center[1]), std::abs(before.center[2])});
    const bool isSameSurface = now.normal == before.normal && std::abs(offset) <= static_cast<double>(largest) * 1e-6;
    TakePosition(now);
    if (isPlaced)
        DescribePlacement();
    else if (!isSameSurface)
        m_settings.moved = true;
    if (!isSameSurface) m_bExpectsPlacement = false;
    ShowChange();
}

void ClipPanel::TakePosition(const Position& position) {
    const bool hasTurned = position.normal != m_settings.normal;
    m_settings.center = position.center;
    m_settings.normal = position.normal;
    ShowNumbers(m_vCenter, m_settings.center);
    if (hasTurned) ShowNumbers(m_vNormal, m_settings.normal);
}

void ClipPanel::FollowScene() {
    if (m_pViewer == nullptr) return;
    FollowViewer();
    const bool hadObjects = m_bHasObjects;
    ReadBoxes();
    if (!m_bHasObjects) m_placement.clear();
    // Nobody has chosen the place of the plane yet, or the place was one in a scene that is gone.
    const bool isFirst = !hadObjects && m_bHasObjects;
    if (m_settings.on && isFirst && !m_settings.moved) Place();
    WarnIfAllIsCutAway(isFirst);
    ShowChange();
}

void ClipPanel::ReadBoxes() {
    m_vBoxes.clear();
    KV_ScenePane::_DKV_ScenePane& methods = m_pViewer->Methods();
    const std::int16_t count = methods.GetNumObjects();
    m_bHasObjects = count > 0;
    m_vBoxes.reserve(static_cast<std::size_t>(count));
    for (std::int16_t i = 0; i < count; ++i) {
        Box box;
        methods.GetObjectBoundingBox(i, &box.low[0], &box.high[0], &box.low[1], &box.high[1], &box.low[2],
                                     &box.high[2]);
        if (box.low[0] <= box.high[0]) m_vBoxes.push_back(box);  // an object without vertices has none
    }
}

bool ClipPanel::CutsAwayAll() const {
    const Point& normal = m_settings.normal;
    const double offset = Along(normal, m_settings.center);
    return !m_vBoxes.empty() && std::all_of(m_vBoxes.begin(), m_vBoxes.end(), [&](const Box& box) {
        Point farthest{};  // corner along the normal
        for (std::size_t i = 0; i < 3; ++i) farthest[i] = normal[i] > 0 ? box.high[i] : box.low[i];
        return Along(normal, farthest) < offset;
    });
}

void ClipPanel::WarnIfAllIsCutAway(bool always) {
    if (!IsClipping() || !CutsAwayAll() || (m_bCutAwayReported && !always)) return;
    m_bCutAwayReported = true;
    emit Report(CutAwayText());
}

// ---- what is shown

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
        texts << CutAwayText();
    QFont font = m_pText->font();
    font.setBold(!texts.isEmpty());
    m_pText->setFont(font);
    if (!m_placement.isEmpty()) texts << m_placement;
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

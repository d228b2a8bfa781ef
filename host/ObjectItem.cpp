// Counts and sizes are shown in the way of the user's country.
#include "ObjectItem.h"

#include <QLocale>
#include <algorithm>
#include <cmath>

#include "KV_ScenePane/PathText.h"
#include "NaturalOrder.h"
#include "ObjectList.h"
#include "ToolTip.h"

namespace {

/// The "C" locale, too, has separators here.
QLocale NumberLocale() {
    QLocale locale;
    locale.setNumberOptions(locale.numberOptions() & ~QLocale::OmitGroupSeparator);
    return locale;
}

std::array<float, 3> ExtentsOf(const std::array<float, 6>& box) {
    return {box[1] - box[0], box[3] - box[2], box[5] - box[4]};
}

/// For the order only.
float DiagonalOf(const std::array<float, 6>& box) {
    const std::array<float, 3> extents = ExtentsOf(box);
    const float diagonal = std::hypot(extents[0], extents[1], extents[2]);
    return std::isfinite(diagonal) ? diagonal : -1.0f;  // an order needs numbers
}

/// The three lengths with the same number of decimals: one, or, of small objects, so many that the longest has four
/// digits.
QString SizeText(const std::array<float, 6>& box) {
    const std::array<float, 3> extents = ExtentsOf(box);
    const float longest = std::max({extents[0], extents[1], extents[2]});
    if (!std::isfinite(longest)) return {};
    const int digits = longest > 0.0f ? static_cast<int>(std::floor(std::log10(longest))) + 1 : 1;
    const auto number = [locale = NumberLocale(), decimals = digits >= 2 ? 1 : std::min(4 - digits, 6)](float value) {
        return locale.toString(static_cast<double>(value), 'f', decimals);
    };
    return QString("%1 × %2 × %3").arg(number(extents[0]), number(extents[1]), number(extents[2]));
}

/// Ranges of x, y and z with four digits, one line each.
QString BoxText(const std::array<float, 6>& box) {
    float largest = 0.0f;
    for (const float value : box) largest = std::max(largest, std::abs(value));
    // What an alignment leaves of a zero is below the digits of the vertices.
    const auto number = [&](float value) {
        return QString::number(std::abs(value) < 1e-6f * largest ? 0.0f : value, 'g', 4);
    };
    const auto range = [&](std::size_t i) { return QString("%1 … %2").arg(number(box[i]), number(box[i + 1])); };
    return QString("x %1\ny %2\nz %3").arg(range(0), range(2), range(4));
}

template <class Value>
int ThreeWay(const Value& a, const Value& b) {
    return a < b ? -1 : b < a ? 1 : 0;
}

}  // namespace

QString CountText(std::int64_t count) { return NumberLocale().toString(static_cast<qlonglong>(count)); }

ObjectItem::ObjectItem(QTreeWidget* list, const ObjectRow& row, const ObjectReport& object)
    : QTreeWidgetItem(list),
      m_row(row),
      m_nTriangles(object.triangles),
      m_nColor(object.color),
      m_bHasVertexColors(object.hasVertexColors),
      m_bShown(row.isVisible) {
    // The viewer gives objects of some mesh formats no name.
    const std::wstring path = object.name.empty() ? KV_ScenePane::WidePath(row.file) : object.name;
    m_path = QString::fromStdString(KV_ScenePane::PathBytes(path));
    m_fileName = m_path.mid(m_path.lastIndexOf('/') + 1);
    m_row.vertices = object.vertices;
    setFlags(flags() | Qt::ItemIsEditable);  // only the name: the list edits no other column
    setText(kName, row.name.isEmpty() ? m_fileName : row.name);
    setCheckState(kName, row.isVisible ? Qt::Checked : Qt::Unchecked);
    setCheckState(kMayMove, row.mayMove ? Qt::Checked : Qt::Unchecked);
    setText(kVertices, CountText(object.vertices));
    setText(kTriangles, CountText(object.triangles));
    for (const int column : {kVertices, kTriangles, kSize}) setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
    ShowPlace(object.box, false);
}

ObjectRow ObjectItem::State() const {
    ObjectRow row = m_row;
    row.isVisible = checkState(kName) == Qt::Checked;
    row.mayMove = checkState(kMayMove) == Qt::Checked;
    row.isRemoved = isHidden();
    return row;
}

void ObjectItem::ShowPlace(const std::array<float, 6>& box, bool isMoved) {
    m_box = box;
    m_bMoved = isMoved;
    setText(kMoved, isMoved ? tr("moved") : QString());
    setText(kSize, m_row.vertices > 0 && IsBox(box) ? SizeText(box) : QString());
    ShowTips();
}

void ObjectItem::ShowTips() {
    QString tip = m_path;
    if (m_row.vertices > 0) tip += '\n' + (IsBox(m_box) ? BoxText(m_box) : tr("no finite coordinates"));
    for (int column = 0; column < kColumnCount; ++column) setToolTip(column, PlainToolTip(tip));
}

void ObjectItem::TakeName() {
    const QString wanted = text(kName).simplified();
    m_row.name = wanted == m_fileName ? QString() : wanted;
    const QString shown = m_row.name.isEmpty() ? m_fileName : m_row.name;
    if (text(kName) != shown) setText(kName, shown);
}

bool ObjectItem::TakeVisibility() {
    const bool isShown = checkState(kName) == Qt::Checked;
    const bool hasChanged = isShown != m_bShown;
    m_bShown = isShown;
    return hasChanged;
}

void ObjectItem::SetVisible(bool visible) {
    m_bShown = visible;
    setCheckState(kName, visible ? Qt::Checked : Qt::Unchecked);
}

int ObjectItem::Compare(const ObjectItem& other, int column) const {
    switch (column) {
        case kName: {
            const std::string name = text(kName).toStdString(), otherName = other.text(kName).toStdString();
            return NaturalLess(name, otherName) ? -1 : NaturalLess(otherName, name) ? 1 : 0;
        }
        case kColor:
            return ThreeWay(m_nColor, other.m_nColor);
        case kTriangles:
            return ThreeWay(m_nTriangles, other.m_nTriangles);
        case kSize:
            return ThreeWay(DiagonalOf(m_box), DiagonalOf(other.m_box));
        case kVertices:
            return ThreeWay(m_row.vertices, other.m_row.vertices);
        case kMayMove:
            return ThreeWay(other.checkState(kMayMove), checkState(kMayMove));  // marked ones first
        case kMoved:
            return ThreeWay(other.m_bMoved, m_bMoved);
        default:
            return 0;
    }
}

bool ObjectItem::operator<(const QTreeWidgetItem& other) const {
    const auto& object = static_cast<const ObjectItem&>(other);
    const int order = Compare(object, static_cast<const ObjectList*>(treeWidget())->SortColumn());
    return order != 0 ? order < 0 : m_row.id < object.m_row.id;
}

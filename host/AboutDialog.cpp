// A message box: it has an icon and one button, which Enter and Escape press.
#include "AboutDialog.h"

#include <QMessageBox>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <array>
#include <utility>

#include "ToolAction.h"

namespace {

constexpr int kIconSide = 48;  // pixels of a screen of plain density

/// A triangulated patch before the background of the viewer.
void DrawPatch(QPainter& painter) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x19, 0x19, 0x32));
    painter.drawRoundedRect(QRectF(0.5, 0.5, 23, 23), 3, 3);
    // Four triangles about one point, lit from the left.
    const QPointF top(11.5, 3.5), right(21, 10.5), bottom(13.5, 20.5), left(3, 12.5), middle(11, 10.5);
    const std::pair<QColor, std::array<QPointF, 3>> triangles[] = {{QColor(0xE4, 0xDE, 0xD0), {left, top, middle}},
                                                                   {QColor(0xB4, 0xAE, 0xA2), {top, right, middle}},
                                                                   {QColor(0x7C, 0x78, 0x70), {right, bottom, middle}},
                                                                   {QColor(0xC8, 0xC2, 0xB6), {bottom, left, middle}}};
    painter.setPen(QPen(QColor(0x50, 0x4C, 0x44), 0.5));
    for (const auto& [color, corners] : triangles) {
        painter.setBrush(color);
        painter.drawPolygon(corners.data(), static_cast<int>(corners.size()));
    }
}

}  // namespace

void ShowAboutDialog(const KV_ScenePane::AboutText& text, QWidget* parent) {
    // Not on the stack: the parent may be destroyed while the dialog is shown, and its children with it.
    const QPointer<QMessageBox> dialog = new QMessageBox(parent);
    dialog->setWindowTitle(QString::fromStdString(text.title));
    dialog->setTextFormat(Qt::PlainText);
    dialog->setText(QString::fromStdString(text.line));
    dialog->setTextInteractionFlags(Qt::TextSelectableByMouse);
    dialog->setIconPixmap(DrawToolIcon(DrawPatch).pixmap(kIconSide));
    dialog->setStandardButtons(QMessageBox::Ok);
    dialog->button(QMessageBox::Ok)->setText(QMessageBox::tr("OK"));  // without a mnemonic
    dialog->exec();
    delete dialog;
}

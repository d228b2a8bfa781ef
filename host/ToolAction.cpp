// Tips and icons of tools.
#include "ToolAction.h"

#include <QAction>
#include <QPainter>
#include <QPixmap>
#include <QToolBar>

QIcon DrawToolIcon(const std::function<void(QPainter&)>& draw) {
    QIcon icon;
    for (const int pixels : {kToolIconSide, 2 * kToolIconSide}) {
        QPixmap picture(pixels, pixels);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(static_cast<double>(pixels) / kToolIconSide, static_cast<double>(pixels) / kToolIconSide);
        draw(painter);
        painter.end();
        icon.addPixmap(picture);
    }
    return icon;
}

QAction* MakeToolAction(QToolBar* bar, const char* name, const QIcon& icon, const QString& text,
                        const QKeySequence& keys, const QString& tip) {
    auto* const action = new QAction(icon, text, bar);
    action->setObjectName(name);
    action->setShortcut(keys);
    SetToolTips(*action, tip);
    return action;
}

void SetToolTips(QAction& action, const QString& tip) {
    const QString plain = action.text().remove('&');
    action.setToolTip(QString("%1 (%2): %3").arg(plain, action.shortcut().toString(QKeySequence::NativeText), tip));
    action.setStatusTip(action.toolTip());
}

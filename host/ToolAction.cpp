// Tips, choices and icons.
#include "ToolAction.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QGuiApplication>
#include <QIconEngine>
#include <QMenu>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QStyle>
#include <QStyleOption>
#include <QToolBar>
#include <algorithm>
#include <utility>

namespace {

/// Calls the function each time that a picture of the icon is needed.
class DrawnIcon : public QIconEngine {
public:
    explicit DrawnIcon(std::function<void(QPainter&)> draw) : m_draw(std::move(draw)) {}

    [[nodiscard]] QIconEngine* clone() const override { return new DrawnIcon(m_draw); }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State /*state*/) override {
        QPixmap picture(size);
        picture.fill(Qt::transparent);
        const int side = std::min(size.width(), size.height());
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(QPoint((size.width() - side) / 2, (size.height() - side) / 2));
        painter.scale(static_cast<double>(side) / kToolIconSide, static_cast<double>(side) / kToolIconSide);
        m_draw(painter);
        painter.end();
        if (mode != QIcon::Disabled) return picture;
        QStyleOption option;
        option.palette = QGuiApplication::palette();
        return QApplication::style()->generatedIconPixmap(mode, picture, &option);
    }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
        const double density = painter->device()->devicePixelRatioF();
        QPixmap picture = pixmap((QSizeF(rect.size()) * density).toSize(), mode, state);
        picture.setDevicePixelRatio(density);
        painter->drawPixmap(rect.topLeft(), picture);
    }

private:
    std::function<void(QPainter&)> m_draw;
};

}  // namespace

bool IsDark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

ToolInk InkOn(const QPalette& palette) {
    if (IsDark(palette)) return {{0xC8, 0xCC, 0xD2}, {0xFF, 0x78, 0x70}, {0x58, 0xC8, 0x78}, {0x70, 0xB0, 0xFF}};
    return {{0x50, 0x56, 0x60}, {0xB0, 0x10, 0x10}, {0x10, 0x80, 0x30}, {0x00, 0x60, 0x90}};
}

ToolInk Ink() { return InkOn(QGuiApplication::palette()); }

QIcon DrawToolIcon(std::function<void(QPainter&)> draw) { return QIcon(new DrawnIcon(std::move(draw))); }

QAction* MakeToolAction(QToolBar* bar, const char* name, const QIcon& icon, const QString& text,
                        const QKeySequence& keys, const QString& tip) {
    auto* const action = new QAction(icon, text, bar);
    action->setObjectName(name);
    action->setShortcut(keys);
    SetToolTips(*action, tip);
    return action;
}

void SetToolTips(QAction& action, const QString& tip) {
    QString text = action.text().remove('&');
    if (text.endsWith("...")) text.chop(3);
    const QString keys = QKeySequence::listToString(action.shortcuts(), QKeySequence::NativeText);
    if (!keys.isEmpty()) text = QString("%1 (%2)").arg(text, keys);
    action.setToolTip(tip.isEmpty() ? text : QString("%1: %2").arg(text, tip));
    action.setStatusTip(action.toolTip());
}

QList<QAction*> AddChoices(QMenu& menu, const QStringList& texts, int checked, const std::function<void(int)>& choose) {
    auto* const group = new QActionGroup(&menu);  // exclusive: checking one action clears the others
    for (int i = 0; i < texts.size(); ++i) {
        QAction* const action = menu.addAction(texts[i], &menu, [choose, i] { choose(i); });
        action->setCheckable(true);
        action->setChecked(i == checked);
        group->addAction(action);
    }
    return group->actions();
}

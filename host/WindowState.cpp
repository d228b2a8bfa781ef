// The state of the panes is a block of Qt's own format. Qt's check of it is the version only, so a hash is kept beside
// it.
#include "WindowState.h"

#include <QCryptographicHash>
#include <algorithm>
#include <array>

#include "Settings.h"

namespace {

constexpr const char* kPlace = "window/place";  // x, y, width, height
constexpr const char* kMaximized = "window/maximized";
constexpr const char* kPanes = "window/panes";
constexpr const char* kPanesHash = "window/panesHash";
constexpr const char* kOpenedByWindow = "window/openedByWindow";

constexpr int kFarthest = 32767, kSmallest = 100;  // pixels; coordinates of X have 16 bits

std::optional<WindowPlace> ReadPlace(const QSettings& stored) {
    const QStringList texts = stored.value(kPlace).toStringList();
    std::array<int, 4> numbers{};
    if (texts.size() != static_cast<qsizetype>(numbers.size())) return std::nullopt;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        bool isNumber = false;
        numbers[i] = texts[static_cast<qsizetype>(i)].toInt(&isNumber);
        const bool isSize = i >= 2;
        if (!isNumber || numbers[i] > kFarthest || numbers[i] < (isSize ? kSmallest : -kFarthest)) return std::nullopt;
    }
    return WindowPlace{{numbers[0], numbers[1]}, {numbers[2], numbers[3]}};
}

QString HashOf(const QByteArray& panes) {
    return QString::fromLatin1(QCryptographicHash::hash(panes, QCryptographicHash::Sha256).toHex());
}

int Inside(int start, int length, int from, int size) { return std::max(from, std::min(start, from + size - length)); }

}  // namespace

WindowState StoredWindow() {
    const QSettings stored = OpenSettings();
    WindowState state;
    state.place = ReadPlace(stored);
    state.maximized = stored.value(kMaximized).toString() == "true";
    const QByteArray panes = QByteArray::fromBase64(stored.value(kPanes).toString().toLatin1());
    if (panes.isEmpty() || HashOf(panes) != stored.value(kPanesHash).toString()) return state;
    state.panes = panes;
    state.openedByWindow = stored.value(kOpenedByWindow).toStringList();
    return state;
}

void StoreWindow(const WindowState& state) {
    QSettings stored = OpenSettings();
    if (state.place) {
        const auto& [corner, size] = *state.place;
        QStringList texts;
        for (const int number : {corner.x(), corner.y(), size.width(), size.height()}) texts << QString::number(number);
        stored.setValue(kPlace, texts);
    }
    stored.setValue(kMaximized, state.maximized);
    stored.setValue(kPanes, QString::fromLatin1(state.panes.toBase64()));
    stored.setValue(kPanesHash, HashOf(state.panes));
    stored.setValue(kOpenedByWindow, state.openedByWindow);
}

QRect MovedInside(const QRect& frame, const QRect& available) {
    return {QPoint(Inside(frame.x(), frame.width(), available.x(), available.width()),
                   Inside(frame.y(), frame.height(), available.y(), available.height())),
            frame.size()};
}

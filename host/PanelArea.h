// A frame for the contents of a pane.
#pragma once
#include <QScrollArea>

/// As wide and as high as its contents ask for, but on a low window it can be lower than these: they are scrolled then.
class PanelArea : public QScrollArea {
    Q_OBJECT
public:
    /// @param contents  belongs to this area from here on
    explicit PanelArea(QWidget* contents, QWidget* parent = nullptr);
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    /// Follows what the contents ask for.
    bool eventFilter(QObject* watched, QEvent* event) override;
};

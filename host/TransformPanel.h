// The transform of one object as numbers.
#pragma once
#include <QString>
#include <QWidget>
#include <array>
#include <optional>

#include "TransformLedger.h"

class QLabel;
class QPushButton;

/// 4 lines of 4 numbers with tabs between them; each number reads back as the same float, whatever the locale.
[[nodiscard]] QString TransformText(const Matrix4& transform);

/// Shows what the window passes to it; it calls no viewer.
class TransformPanel : public QWidget {
    Q_OBJECT
public:
    struct Shown {
        QString name;   ///< of the object
        QString state;  ///< whether it is moved and saved, as a sentence
        Matrix4 transform{};
    };

    explicit TransformPanel(QWidget* parent = nullptr);
    /// @param object  null when there is no current one
    void Show(const Shown* object);

private:
    void Copy() const;

    std::optional<Matrix4> m_transform;
    QLabel *m_pName, *m_pState;
    std::array<QLabel*, 16> m_pNumbers{};
    QPushButton* m_pCopy;
};

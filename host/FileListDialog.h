// A question or a report about files: all of them are in a list that scrolls, however many they are.
#pragma once
#include <QDialog>
#include <QDialogButtonBox>
#include <QStringList>

class FileListDialog : public QDialog {
    Q_OBJECT
public:
    using Button = QDialogButtonBox::StandardButton;

    struct Texts {
        QString title, heading;
        QStringList lines;
        QString note;  ///< below the list; may be empty
    };

    /// @param preset  pressed by Return
    FileListDialog(const Texts& texts, QDialogButtonBox::StandardButtons buttons, Button preset,
                   QWidget* parent = nullptr);
    /// Shows the dialog until it is answered. @return the button; NoButton when it was closed without one
    [[nodiscard]] Button Ask();
    /// Instead of the usual text. @param button  one of the dialog's
    void SetButtonText(Button button, const QString& text);
    /// For a program that answers. @param button  one of the dialog's
    void Press(Button button);
    /// Heading, lines and note.
    [[nodiscard]] QString Text() const;

private:
    Texts m_texts;
    QDialogButtonBox* m_pButtons;
    Button m_pressed = QDialogButtonBox::NoButton;
};

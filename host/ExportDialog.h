// Asks for the folder and the format of several exports.
#pragma once
#include <QDialog>
#include <QStringList>
#include <string_view>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

class ExportDialog : public QDialog {
    Q_OBJECT
public:
    /// @param names   of the objects
    /// @param folder  to begin with
    ExportDialog(const QStringList& names, const QString& folder, QWidget* parent = nullptr);

    [[nodiscard]] QString Folder() const;
    /// Of a type that can be written.
    [[nodiscard]] std::string_view Extension() const;
    /// Names in the folder, one per object.
    [[nodiscard]] QStringList Files() const;

private:
    void AskForFolder();
    /// Shows the files, and whether they can be written there.
    void Follow();

    QStringList m_names;
    QLineEdit* m_pFolder;
    QComboBox* m_pFormat;
    QLabel* m_pFiles;
    QPushButton* m_pExport = nullptr;
};

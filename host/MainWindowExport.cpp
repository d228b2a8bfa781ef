// Exporting one object: the choice of the object, the dialog for the file, and the message about the result.
#include <QFileDialog>
#include <QFileInfo>
#include <QStatusBar>
#include <vector>

#include "CutCommands.h"
#include "FileExport.h"
#include "FileTypes.h"
#include "MainWindow.h"
#include "MessagePane.h"
#include "ObjectList.h"
#include "TranslatedText.h"

namespace {

QString ToText(std::string_view ascii) {
    return QString::fromLatin1(ascii.data(), static_cast<qsizetype>(ascii.size()));
}

/// Shown by the export dialog, one per type: "PLY meshes (*.ply)".
QString FilterOf(const FileType& type) {
    return QString("%1 (*.%2)").arg(MainWindow::tr(type.description), ToText(type.extension));
}

/// @p name with @p extension in place of the extension of a known type; other texts after a point belong to the name.
QString WithExtension(const QString& name, std::string_view extension) {
    const bool isKnown = name.contains('.') && FindFileType(QFile::encodeName(name).toStdString()) != nullptr;
    return (isKnown ? name.left(name.lastIndexOf('.')) : name) + '.' + ToText(extension);
}

/// Offers one filter per type that can be written. A change of the filter changes the extension in the dialog's name
/// field, so that the dialog shows, and asks about, the file that will be written.
void OfferFormats(QFileDialog& dialog, const QString& objectName) {
    std::vector<std::string_view> extensions;
    QStringList filters;
    for (const FileType& type : kFileTypes) {
        if (!type.canExport) continue;
        extensions.push_back(type.extension);
        filters.push_back(FilterOf(type));
    }
    const auto choose = [&dialog](std::string_view extension, const QString& name) {
        dialog.setDefaultSuffix(ToText(extension));
        if (!name.isEmpty()) dialog.selectFile(WithExtension(name, extension));
    };
    dialog.setNameFilters(filters);
    choose(extensions.front(), objectName);
    QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, [=, &dialog](const QString& filter) {
        const auto chosen = filters.indexOf(filter);
        if (chosen < 0) return;
        choose(extensions[static_cast<std::size_t>(chosen)], QFileInfo(dialog.selectedFiles().value(0)).fileName());
    });
}

}  // namespace

int MainWindow::SelectedObject() const {
    const int current = m_pObjects->CurrentObject();
    if (current >= 0) return current;
    const std::vector<int> present = m_pObjects->PresentObjects();
    return present.size() == 1 ? present.front() : -1;
}

void MainWindow::AskForExport() {
    const int index = SelectedObject();
    if (index < 0) {
        const QString text = HaveObjects() ? tr("Nothing exported: select an object in the list first.")
                                           : tr("Nothing exported: there is no object.");
        m_pMessages->AddText(text);
        statusBar()->showMessage(text);
        return;
    }
    const QString name = m_pObjects->NameOf(index);
    // The dialog asks before it overwrites a file.
    QFileDialog dialog(this, tr("Export %1").arg(name));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    OfferFormats(dialog, name.isEmpty() ? tr("object") : name);
    if (dialog.exec() != QDialog::Accepted) return;
    (void)ExportObjectTo(index, QFile::encodeName(dialog.selectedFiles().constFirst()).toStdString());
}

bool MainWindow::ExportObjectTo(int index, const std::string& path) {
    // During an import the rows of the list and the objects of the viewer may differ.
    if (Pane() == nullptr || IsImporting() || index < 0 || index >= Pane()->Methods().GetNumObjects()) return false;
    const QString file = QString::fromStdString(path);
    const ExportResult result = ExportObject(Pane()->Methods(), index, path);
    // The message starts with the file in all cases.
    QString text = TranslatedText(result.text);
    if (!result.written) {
        text = tr("%1: not written: %2").arg(file, text);
    } else {
        const QString name = m_pObjects->NameOf(index);
        const QString done = tr("%1: export of %2").arg(file, name);
        text = text.isEmpty() ? done : done + ": " + text;
    }
    m_pMessages->AddText(text);  // the next menu that opens clears the status bar
    statusBar()->showMessage(text);
    if (result.written) m_pCuts->OnExported(index);
    return result.written;
}

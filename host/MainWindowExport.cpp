// Exports: the choice of the objects, the dialogs for the files, and the messages about the results.
#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QStatusBar>
#include <vector>

#include "CutCommands.h"
#include "ExportDialog.h"
#include "ExportNames.h"
#include "FileExport.h"
#include "FileListDialog.h"
#include "FileTypes.h"
#include "MainWindow.h"
#include "MessagePane.h"
#include "ObjectList.h"
#include "RecentFiles.h"
#include "TranslatedText.h"

namespace {

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
    const std::vector<int> selected = m_pObjects->SelectedObjects();
    if (selected.size() == 1) return selected.front();
    const int current = m_pObjects->CurrentObject();
    if (current >= 0) return current;
    const std::vector<int> present = m_pObjects->PresentObjects();
    return present.size() == 1 ? present.front() : -1;
}

void MainWindow::AskForExport() {
    if (const std::vector<int> selected = m_pObjects->SelectedObjects(); selected.size() > 1) {
        AskForExports(selected);
        return;
    }
    const int index = SelectedObject();
    if (index < 0) {
        const QString text = HaveObjects() ? tr("Nothing exported: select an object in the list first.")
                                           : tr("Nothing exported: there is no object.");
        Report(text);
        return;
    }
    const QString name = m_pObjects->NameOf(index);
    // The dialog asks before it overwrites a file.
    QFileDialog dialog(this, tr("Export %1").arg(name), StoredFolder(FolderUse::Export));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    OfferFormats(dialog, name.isEmpty() ? tr("object") : name);
    if (dialog.exec() != QDialog::Accepted) return;
    StoreFolderOf(FolderUse::Export, dialog.selectedFiles().constFirst());
    (void)ExportObjectTo(index, QFile::encodeName(dialog.selectedFiles().constFirst()).toStdString());
}

void MainWindow::AskForExports(const std::vector<int>& indices) {
    QStringList names;
    for (const int index : indices) names << m_pObjects->NameOf(index);
    ExportDialog dialog(names, StoredFolder(FolderUse::Export), this);
    if (dialog.exec() != QDialog::Accepted) return;
    const QDir folder(dialog.Folder());
    std::vector<QString> paths;
    QStringList existing;
    for (const QString& file : dialog.Files()) {
        paths.push_back(folder.filePath(file));
        if (QFileInfo::exists(paths.back())) existing << paths.back();
    }
    if (!existing.isEmpty()) {
        FileListDialog question({tr("Export"), tr("These files exist already. Overwrite them?"), existing, {}},
                                QDialogButtonBox::Yes | QDialogButtonBox::Cancel, QDialogButtonBox::Cancel, this);
        question.SetButtonText(QDialogButtonBox::Yes, tr("Overwrite"));
        if (question.Ask() != QDialogButtonBox::Yes) return;
    }
    StoreFolderOf(FolderUse::Export, paths.front());
    ExportObjectsTo(indices, paths);
}

void MainWindow::ExportObjectsTo(const std::vector<int>& indices, const std::vector<QString>& paths) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    int written = 0;
    for (std::size_t i = 0; i < indices.size(); ++i)
        written += ExportObjectTo(indices[i], QFile::encodeName(paths[i]).toStdString()) ? 1 : 0;
    QApplication::restoreOverrideCursor();
    statusBar()->showMessage(
        tr("%1 of %2 objects exported").arg(QString::number(written), QString::number(indices.size())));
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
    Report(text);
    if (result.written)
        m_pCuts->OnExported(index);
    else
        m_pMessages->PointOut();
    return result.written;
}

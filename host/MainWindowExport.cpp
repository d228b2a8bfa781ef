// Exporting one object: which, into which file, and what is told of it.
#include <QFileDialog>
#include <QFileInfo>
#include <QStatusBar>
#include <iterator>

#include "FileExport.h"
#include "MainWindow.h"
#include "MessagePane.h"
#include "ObjectList.h"
#include "SceneFile.h"

namespace {

struct MeshFormat {
    const char* extension;
    const char* filter;
};
constexpr MeshFormat kFormats[] = {
    {"ply", QT_TRANSLATE_NOOP("MainWindow", "PLY meshes (*.ply)")},
    {"stl", QT_TRANSLATE_NOOP("MainWindow", "STL meshes (*.stl)")},
    {"hps", QT_TRANSLATE_NOOP("MainWindow", "HPS meshes (*.hps)")},
};

/// The name as one of a mesh file with that extension: that of a scan or of another mesh file gives way.
QString WithExtension(const QString& name, const char* extension) {
    const bool known = name.contains('.') && KindOfFile(QFile::encodeName(name).toStdString()) != FileKind::Unknown;
    return (known ? name.left(name.lastIndexOf('.')) : name) + '.' + extension;
}

/// The other formats come with the dialog's filter, so that the name in sight is the name that is asked about and
/// written.
void OfferFormats(QFileDialog& dialog, const QString& objectName) {
    QStringList filters;
    for (const MeshFormat& format : kFormats) filters.push_back(MainWindow::tr(format.filter));
    dialog.setNameFilters(filters);
    dialog.setDefaultSuffix(kFormats[0].extension);
    dialog.selectFile(WithExtension(objectName, kFormats[0].extension));
    QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, [&dialog, filters](const QString& filter) {
        const auto chosen = filters.indexOf(filter);
        if (chosen < 0) return;
        const char* const extension = kFormats[chosen].extension;
        const QString name = QFileInfo(dialog.selectedFiles().value(0)).fileName();
        dialog.setDefaultSuffix(extension);
        if (!name.isEmpty()) dialog.selectFile(WithExtension(name, extension));
    });
}

}  // namespace

int MainWindow::SelectedObject() const {
    const int row = m_pObjects->indexOfTopLevelItem(m_pObjects->currentItem());
    return row < 0 && m_pObjects->topLevelItemCount() == 1 ? 0 : row;
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
    const QString name = m_pObjects->topLevelItem(index)->text(ObjectList::kName);
    QFileDialog dialog(this, tr("Export %1").arg(name));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    OfferFormats(dialog, name.isEmpty() ? tr("object") : name);
    if (dialog.exec() != QDialog::Accepted) return;
    (void)ExportObjectTo(index, QFile::encodeName(dialog.selectedFiles().constFirst()).toStdString());
}

bool MainWindow::ExportObjectTo(int index, const std::string& path) {
    if (Pane() == nullptr || IsImporting() || index < 0 || index >= Pane()->Methods().GetNumObjects()) return false;
    const QString file = QString::fromStdString(path);
    const ExportResult result = ExportObject(Pane()->Methods(), index, path);
    QString text = QString::fromStdString(result.text);
    if (!result.written) {
        text = tr("%1: not written: %2").arg(file, text);
    } else {
        const QString name = m_pObjects->topLevelItem(index)->text(ObjectList::kName);
        const QString done = tr("%1: export of %2").arg(file, name);
        text = text.isEmpty() ? done : done + ": " + text;
    }
    m_pMessages->AddText(text);  // the status bar is wiped by the next menu that opens
    statusBar()->showMessage(text);
    return result.written;
}

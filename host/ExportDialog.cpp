// The names of the files follow the format.
#include "ExportDialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "ExportNames.h"
#include "FileTypes.h"

ExportDialog::ExportDialog(const QStringList& names, const QString& folder, QWidget* parent)
    : QDialog(parent),
      m_names(names),
      m_pFolder(new QLineEdit(QDir::toNativeSeparators(folder.isEmpty() ? QDir::currentPath() : folder))),
      m_pFormat(new QComboBox),
      m_pFiles(new QLabel) {
    setWindowTitle(tr("Export %n object(s)", nullptr, static_cast<int>(names.size())));
    m_pFolder->setObjectName("exportFolder");
    m_pFormat->setObjectName("exportFormat");
    for (const FileType& type : kFileTypes) {
        if (!type.canExport) continue;
        m_pFormat->addItem(FilterOf(type), static_cast<int>(&type - kFileTypes));
    }
    m_pFiles->setTextFormat(Qt::PlainText);
    m_pFiles->setWordWrap(true);
    constexpr int kWidth = 420;  // pixels, for most paths
    m_pFolder->setMinimumWidth(kWidth);
    auto* const browse = new QPushButton(tr("&Browse..."));
    browse->setAutoDefault(false);  // Enter exports
    auto* const folderRow = new QHBoxLayout;
    folderRow->addWidget(m_pFolder, 1);
    folderRow->addWidget(browse);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
    m_pExport = buttons->addButton(tr("&Export"), QDialogButtonBox::AcceptRole);
    auto* const form = new QFormLayout(this);
    auto* const folderLabel = new QLabel(tr("&Folder:"));
    folderLabel->setBuddy(m_pFolder);
    form->addRow(folderLabel, folderRow);
    form->addRow(tr("F&ormat:"), m_pFormat);
    form->addRow(tr("Files:"), m_pFiles);
    form->addRow(buttons);
    m_pExport->setDefault(true);  // once it belongs to the dialog, which chooses another one otherwise
    connect(browse, &QPushButton::clicked, this, &ExportDialog::AskForFolder);
    connect(m_pFolder, &QLineEdit::textChanged, this, &ExportDialog::Follow);
    connect(m_pFormat, &QComboBox::currentIndexChanged, this, &ExportDialog::Follow);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    Follow();
}

QString ExportDialog::Folder() const { return QDir::fromNativeSeparators(m_pFolder->text()); }

std::string_view ExportDialog::Extension() const { return kFileTypes[m_pFormat->currentData().toInt()].extension; }

QStringList ExportDialog::Files() const { return ExportNames(m_names, Extension()); }

void ExportDialog::AskForFolder() {
    const QString folder = QFileDialog::getExistingDirectory(this, tr("Folder for the files"), Folder());
    if (!folder.isEmpty()) m_pFolder->setText(QDir::toNativeSeparators(folder));
}

void ExportDialog::Follow() {
    constexpr qsizetype kShown = 4;
    const QStringList files = Files();
    const bool isFolder = QFileInfo(Folder()).isDir();
    QString text = files.first(std::min(kShown, files.size())).join('\n');
    if (files.size() > kShown) text += '\n' + tr("and %n more", nullptr, static_cast<int>(files.size() - kShown));
    m_pFiles->setText(isFolder ? text : tr("There is no such folder."));
    m_pExport->setEnabled(isFolder);
}

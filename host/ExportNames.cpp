// The number comes before the extension: "scan (2).ply".
#include "ExportNames.h"

#include <QCoreApplication>
#include <QFile>
#include <QSet>

#include "FileTypes.h"

namespace {

/// Without folders, and not hidden.
QString BaseName(QString name) {
    for (QChar& c : name) {
        if (c == '/' || c.category() == QChar::Other_Control) c = '_';
    }
    if (name.startsWith('.')) name[0] = '_';
    return name.isEmpty() ? QCoreApplication::translate("MainWindow", "object") : name;
}

}  // namespace

QString ToText(std::string_view ascii) {
    return QString::fromLatin1(ascii.data(), static_cast<qsizetype>(ascii.size()));
}

QString FilterOf(const FileType& type) {
    return QString("%1 (*.%2)")
        .arg(QCoreApplication::translate("MainWindow", type.description), ToText(type.extension));
}

QString WithExtension(const QString& name, std::string_view extension) {
    const bool isKnown = name.contains('.') && FindFileType(QFile::encodeName(name).toStdString()) != nullptr;
    return (isKnown ? name.left(name.lastIndexOf('.')) : name) + '.' + ToText(extension);
}

QStringList ExportNames(const QStringList& names, std::string_view extension) {
    QStringList files;
    QSet<QString> taken;
    for (const QString& name : names) {
        const QString plain = WithExtension(BaseName(name), extension);
        const qsizetype stem = plain.size() - static_cast<qsizetype>(extension.size()) - 1;
        QString file = plain;
        for (int number = 2; taken.contains(file.toCaseFolded()); ++number)
            file = QString("%1 (%2)%3").arg(plain.left(stem), QString::number(number), plain.mid(stem));
        taken.insert(file.toCaseFolded());
        files << file;
    }
    return files;
}

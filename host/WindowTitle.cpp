// The first file is named; the number of the others is that of different paths.
#include "WindowTitle.h"

#include <QCoreApplication>
#include <set>

namespace {

/// File without its folders, as a part of a title: on one line, and with what Qt would read as the mark doubled.
QString TitleName(const std::string& path) {
    QString name = QString::fromStdString(path.substr(path.rfind('/') + 1));
    for (QChar& letter : name) {
        if (letter.category() == QChar::Other_Control) letter = ' ';
    }
    return name.replace("[*]", "[*][*]");
}

}  // namespace

QString WindowTitle(const std::vector<std::string>& files) {
    const QString program = QCoreApplication::translate("WindowTitle", "scenepane");
    if (files.empty()) return program + "[*]";
    const auto others = static_cast<int>(std::set<std::string>(files.begin(), files.end()).size()) - 1;
    QString shown = TitleName(files.front());
    if (others > 0) shown = QCoreApplication::translate("WindowTitle", "%1 and %Ln more", nullptr, others).arg(shown);
    return QString("%1[*] - %2").arg(shown, program);
}

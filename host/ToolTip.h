// Tool tips of texts that are not markup.
#pragma once
#include <QString>
#include <QTextDocument>

/// The tool tip that shows the text as it is: Qt reads what looks like tags as such, and file names may hold them.
inline QString PlainToolTip(const QString& text) {
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text) : text;
}

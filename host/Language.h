// The language of the window.
#pragma once

/// Translates the texts of the window and of Qt's own dialogs into the user's language ($LANGUAGE, $LC_ALL,
/// $LC_MESSAGES, $LANG, in this order) where there is a translation; else they are English. After the QApplication and
/// before the first widget. Standard error, files and the output for scripts stay English: they do not come from a
/// window.
void TranslateWindow();

// The translations of the window are built into the program; those of Qt are where the system has installed them.
#include "Language.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

// Outside any namespace, as the macro needs it: the resource is in a static library, and nothing else refers to it.
static void LoadTranslations() { Q_INIT_RESOURCE(translations); }

namespace {

void Install(QTranslator* translator) { QCoreApplication::installTranslator(translator); }

}  // namespace

void TranslateWindow() {
    LoadTranslations();
    auto* const own = new QTranslator(QCoreApplication::instance());
    // The sources are English, but for "1 object" and "2 objects".
    if (!own->load(QLocale(), "scenepane", "_", ":/translations") && !own->load(":/translations/scenepane_en.qm"))
        return;
    Install(own);
    const QLocale language(own->language());
    if (language.language() == QLocale::English) return;
    // The same language as the window, or the buttons of its dialogs would have another one than their texts.
    auto* const qt = new QTranslator(QCoreApplication::instance());
    if (qt->load(language, "qtbase", "_", QLibraryInfo::path(QLibraryInfo::TranslationsPath))) Install(qt);
}

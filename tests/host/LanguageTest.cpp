// The language of the window is that of the user.
#include "host/OperatorFixture.h"

namespace {

TEST(WindowLanguage, IsGermanWhereTheUserIs) {
    for (const auto& [name, value] :
         {std::pair("LANG", "de_DE.UTF-8"), std::pair("LANG", "de_AT.UTF-8"), std::pair("LANGUAGE", "de")}) {
        std::map<std::string, std::string> environment{{"LC_ALL", ""}, {"LANG", "en_US.UTF-8"}};
        environment[name] = value;
        Operator user(kDesktops[0], environment);
        user.Start();
        for (const char* const menu : {"Datei", "Bearbeiten", "Ansicht", "Werkzeuge", "Hilfe"})
            (void)user.WaitForText(menu);
        EXPECT_FALSE(user.Shows("File")) << name << "=" << value;
    }
}

TEST(WindowLanguage, IsEnglishWhereThereIsNoTranslation) {
    Operator user(kDesktops[0], {{"LC_ALL", ""}, {"LANG", "fr_FR.UTF-8"}});
    user.Start();
    (void)user.WaitForText("File");
}

TEST(WindowLanguage, QtsOwnButtonsAreInTheLanguageOfTheWindow) {
    Operator user(kDesktops[0], {{"LC_ALL", ""}, {"LANG", "de_DE.UTF-8"}});
    user.Start();
    user.Screen().Key("ctrl+o");
    (void)user.WaitForWindow("Scans und Netze");
    (void)user.WaitForText("Abbrechen", TextMatch::Part);  // at its left is an icon
}

}  // namespace

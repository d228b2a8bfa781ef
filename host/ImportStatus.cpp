// Failed files are left out: the status bar counts them separately.
#include "ImportStatus.h"

#include <QCoreApplication>
#include <algorithm>
#include <vector>

#include "TranslatedText.h"

namespace {

struct ImportStatus {
    Q_DECLARE_TR_FUNCTIONS(ImportStatus)
};

QString NameOf(const std::string& path) { return QString::fromStdString(path.substr(path.rfind('/') + 1)); }

}  // namespace

QString ImportStatus(std::span<const std::string> files, std::span<const ImportResult> results) {
    int added = 0;
    std::vector<std::size_t> noted;
    for (std::size_t i = 0; i < results.size(); ++i) {
        if (results[i].state != ImportResult::State::Added) continue;
        ++added;
        if (!results[i].text.empty()) noted.push_back(i);
    }
    QString opened = ImportStatus::tr("%1 of %2 files opened").arg(added).arg(results.size());
    if (noted.empty()) return opened;
    const std::string& text = results[noted.front()].text;
    if (noted.size() == 1)
        return ImportStatus::tr("%1; %2: %3").arg(opened, NameOf(files[noted.front()]), TranslatedText(text));
    const bool isSame = std::ranges::all_of(noted, [&](std::size_t i) { return results[i].text == text; });
    const auto count = static_cast<int>(noted.size());
    return isSame ? ImportStatus::tr("%1; %n file(s): %2", nullptr, count).arg(opened, TranslatedText(text))
                  : ImportStatus::tr("%1; messages about %n file(s)", nullptr, count).arg(opened);
}

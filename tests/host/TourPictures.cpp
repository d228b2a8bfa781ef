// Makes the pictures of docs/tour.md: drives the program as an operator does and takes what the screen shows.
//   tour_pictures DOCS_FOLDER          makes them in a scratch folder and compares them with those of the page
//   tour_pictures --write DOCS_FOLDER  replaces those of the page
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QRegularExpression>
#include <QSet>
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/Operator.h"

namespace {

// Small windows, so that their texts can be read on the page.
const DesktopKind kDesktop{"tour", "1240x800", 1};

// Between brightnesses of blocks of 8 x 8 pixels, of 255: fonts and drivers of other machines move single letters and
// edges; a pane, a menu or an object that is missing changes more.
constexpr int kBlock = 8;
constexpr double kMeanDifference = 6;

struct TourPicture {
    const char* name;
    /// Leads to what the picture shows. The scans are open and shown.
    std::function<void(Operator&)> arrange;
    std::map<std::string, std::string> environment;
};

void ClickViewer(const Operator& user) { user.Screen().Click(user.InViewer(0.02, 0.97)); }

void DrawLasso(Operator& user) {
    user.Screen().Key("i");
    (void)user.WaitForText("click to add, right click to cut, Esc to cancel", TextMatch::Part);
    for (const auto& [x, y] :
         {std::pair(0.4, 0.35), std::pair(0.55, 0.3), std::pair(0.65, 0.45), std::pair(0.5, 0.6)}) {
        user.Screen().Click(user.InViewer(x, y));
        (void)user.WaitForStillPicture();  // the corner is drawn
    }
}

void PickTwoPoints(Operator& user) {
    user.Choose({"Tools", "Picking", "Points on objects"});
    user.Screen().DoubleClick(user.InViewer(0.48, 0.45));
    (void)user.WaitForText("mm", TextMatch::Part);
    user.Screen().DoubleClick(user.InViewer(0.54, 0.55));
    (void)user.WaitForText("distance", TextMatch::Part);
}

const TourPicture kPictures[] = {
    {"window", [](Operator&) {}, {}},
    {"recent",
     [](Operator& user) {
         user.ClickText("File");
         (void)user.WaitForText("Open recent");
     },
     {}},
    {"oblique",
     [](Operator& user) {
         ClickViewer(user);
         user.Screen().Key("6");
     },
     {}},
    {"render-modes",
     [](Operator& user) {
         user.ClickText("Render");
         (void)user.WaitForText("Wireframe");
     },
     {}},
    {"objects-menu", [](Operator& user) { user.Screen().Click(user.WaitForText("bust_002.pcm").Middle(), 3); }, {}},
    {"lasso", DrawLasso, {}},
    {"cut",
     [](Operator& user) {
         DrawLasso(user);
         user.Screen().Click(user.InViewer(0.5, 0.5), 3);
         (void)user.WaitForText("Undo cut (1)");
     },
     {}},
    {"clip-plane",
     [](Operator& user) {
         ClickViewer(user);
         user.Screen().Key("2");
         user.Screen().Key("p");
     },
     {}},
    {"picks", PickTwoPoints, {}},
    {"align",
     [](Operator& user) {
         ClickViewer(user);
         user.Screen().Key("a");
     },
     {}},
    {"picture",
     [](Operator& user) {
         user.Screen().Key("ctrl+s");
         (void)user.WaitForWindow("Save view as picture");
     },
     {}},
    {"shortcuts",
     [](Operator& user) {
         user.Screen().Key("F1");
         (void)user.WaitForWindow("Shortcuts");
     },
     {}},
    {"dark",
     [](Operator& user) {
         user.Choose({"View", "Appearance", "Dark"});
     },
     {}},
    {"german", [](Operator&) {}, {{"LC_ALL", ""}, {"LANG", "de_DE.UTF-8"}}},
};

/// Waits until the whole screen stays as it is.
ScreenShown WaitForStillScreen(const Operator& user) {
    ScreenShown last = user.Screen().Show();
    int same = 0;
    user.WaitFor("a screen that stays", [&] {
        ScreenShown now = user.Screen().Show();
        same = now == last ? same + 1 : 0;
        last = std::move(now);
        return same == 40;
    });
    return last;
}

QImage Make(const TourPicture& picture) {
    Operator user(kDesktop, picture.environment);
    const std::string folder = user.Folder() / "scans";
    if (user.StartOther({KV_SIMULATE_SCANS, "--out", folder, "--scans", "4", "--size", "240x180"})->WaitForEnd() != 0)
        throw std::runtime_error("simulate-scans has failed");
    std::vector<std::string> scans;
    for (int i = 1; i <= 4; ++i) scans.push_back(folder + "/bust_00" + std::to_string(i) + ".pcm");
    user.Start(scans);
    (void)user.WaitForText("bust_004.pcm");
    (void)user.WaitForStillPicture();
    picture.arrange(user);
    const ScreenShown shown = WaitForStillScreen(user);
    const QImage screen(reinterpret_cast<const uchar*>(shown.pixels.data()), shown.width, shown.height,
                        QImage::Format_RGB32);
    const ScreenArea frame = user.MainWindow().frame;
    return screen.copy(QRect(frame.x, frame.y, frame.width, frame.height) & screen.rect());
}

QSet<QRgb> ColorsOf(const QImage& image) {
    QSet<QRgb> colors;
    for (int y = 0; y < image.height(); y += 2) {
        for (int x = 0; x < image.width(); x += 2) colors.insert(image.pixel(x, y));
    }
    return colors;
}

double MeanDifference(const QImage& a, const QImage& b) {
    const QSize blocks = a.size() / kBlock;
    const auto reduce = [&](const QImage& image) {
        return image.scaled(blocks, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
            .convertToFormat(QImage::Format_Grayscale8);
    };
    const QImage left = reduce(a), right = reduce(b);
    double sum = 0;
    for (int y = 0; y < blocks.height(); ++y) {
        for (int x = 0; x < blocks.width(); ++x) sum += std::abs(qGray(left.pixel(x, y)) - qGray(right.pixel(x, y)));
    }
    return sum / (blocks.width() * blocks.height());
}

/// @return what is wrong with a picture in comparison with that of the page; empty when nothing is
std::string Compare(const QImage& made, const QString& checkedIn) {
    if (ColorsOf(made).size() < 50) return "is nearly blank";
    const QImage other(checkedIn);
    if (other.isNull()) return "is missing in docs/tour";
    if (made.size() != other.size()) return "has another size";
    const double difference = MeanDifference(made, other);
    return difference <= kMeanDifference ? "" : "differs by " + std::to_string(difference);
}

/// The page shows exactly the pictures that are made.
std::vector<std::string> FaultsOfPage(const QString& docs) {
    QFile page(docs + "/tour.md");
    if (!page.open(QFile::ReadOnly)) return {"docs/tour.md cannot be read"};
    QSet<QString> named, made;
    auto match = QRegularExpression("\\(tour/([a-z-]+)\\.png\\)").globalMatch(QString::fromUtf8(page.readAll()));
    while (match.hasNext()) named.insert(match.next().captured(1));
    for (const TourPicture& picture : kPictures) made.insert(picture.name);
    std::vector<std::string> faults;
    for (const QString& name : named - made) faults.push_back(name.toStdString() + ": in docs/tour.md, but not made");
    for (const QString& name : made - named) faults.push_back(name.toStdString() + ": made, but not in docs/tour.md");
    return faults;
}

}  // namespace

int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments().mid(1);
    const bool writes = arguments.size() == 2 && arguments[0] == "--write";
    if (arguments.isEmpty() || (arguments.size() == 2 && !writes) || arguments.size() > 2) {
        std::fputs("usage: tour_pictures [--write] DOCS_FOLDER\n", stderr);
        return 2;
    }
    const QString docs = arguments.last();
    std::vector<std::string> faults = FaultsOfPage(docs);
    for (const TourPicture& picture : kPictures) {
        const QString file = QString("%1/tour/%2.png").arg(docs, picture.name);
        std::string fault;
        try {
            const QImage made = Make(picture);
            if (writes) {
                std::filesystem::create_directories((docs + "/tour").toStdString());
                if (!made.save(file, nullptr, 0)) fault = "cannot be written";
            } else {
                fault = Compare(made, file);
                (void)made.save(QString(KV_PICTURE_FOLDER "/tour-%1.png").arg(picture.name));
            }
        } catch (const std::exception& error) {
            fault = error.what();
        }
        std::printf("%s: %s\n", picture.name, fault.empty() ? "good" : fault.c_str());
        if (!fault.empty()) faults.push_back(std::string(picture.name) + ": " + fault);
    }
    for (const std::string& fault : faults) std::fprintf(stderr, "%s\n", fault.c_str());
    return faults.empty() ? 0 : 1;
}

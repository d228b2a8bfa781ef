// Makes the pictures of docs/tour.md: drives the program as an operator does and takes what the screen shows.
//   tour_pictures DOCS_FOLDER [NAME...]          compares them with those of the page
//   tour_pictures --write DOCS_FOLDER [NAME...]  replaces those of the page
// Names limit it to these pictures.
#include <QFile>
#include <QGuiApplication>
#include <QHash>
#include <QImage>
#include <QRegularExpression>
#include <QSet>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "host/Operator.h"

namespace {

// Small windows, so that their texts can be read on the page.
const DesktopKind kDesktop{"tour", "1240x800", 1};

// Means over blocks of pixels are compared, per channel, of 255: the smoothing of edges and letters differs between
// machines. The limit for the whole picture finds a change of all of it, such as another theme; that for a region finds
// a menu, pane or object that is missing. Check() makes sure that both find what each picture is about.
constexpr int kBlock = 8;
constexpr int kBlocksPerRegion = 5;
constexpr double kMeanDifference = 3, kRegionDifference = 16;

// At the lower edge of the window. Not compared: it has the time of the last frame, and messages that disappear after
// some seconds.
constexpr int kStatusBarHeight = 40;

// The cursor of a text field blinks.
constexpr int kCursorPixels = 64;

struct TourPicture {
    const char* name;
    /// Leads to what the picture shows. The scans are open and shown.
    std::function<void(Operator&)> arrange;
    std::map<std::string, std::string> environment;
};

bool IsSameButForCursor(const ScreenShown& a, const ScreenShown& b) {
    int different = 0;
    for (std::size_t i = 0; i < a.pixels.size(); ++i) different += a.pixels[i] != b.pixels[i] ? 1 : 0;
    return different <= kCursorPixels;
}

/// Waits until the whole screen stays as it is, for longer than a frame lasts on a busy machine.
ScreenShown WaitForStillScreen(const Operator& user) {
    using Clock = std::chrono::steady_clock;
    constexpr int kLooks = 10;
    ScreenShown first = user.Screen().Show();
    Clock::time_point since = Clock::now();
    int same = 0;
    user.WaitFor("a screen that stays", [&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        ScreenShown now = user.Screen().Show();
        if (IsSameButForCursor(now, first))
            return ++same >= kLooks && Clock::now() - since >= std::chrono::milliseconds(1500);
        first = std::move(now);
        since = Clock::now();
        same = 0;
        return false;
    });
    return first;
}

/// Into the corner of the viewer, where no object is: it deselects, and the viewer gets the keyboard. A key that came
/// at once would go to the window, which may handle it before the viewer handles the click.
void ClickViewer(const Operator& user) {
    user.Screen().Click(user.InViewer(0.02, 0.97));
    (void)WaitForStillScreen(user);
}

void DrawLasso(Operator& user) {
    user.Screen().Key("i");
    (void)user.WaitForText("click to add, right click to cut, Esc to cancel", TextMatch::Part);
    for (const auto& [x, y] :
         {std::pair(0.4, 0.35), std::pair(0.6, 0.35), std::pair(0.65, 0.45), std::pair(0.5, 0.6)}) {
        user.Screen().Click(user.InViewer(x, y));
        (void)user.WaitForStillPicture();  // the corner is drawn
    }
}

void PickTwoPoints(Operator& user) {
    user.Choose({"Tools", "Picking", "Points on objects"});
    (void)WaitForStillScreen(user);  // the menu is gone
    user.Screen().DoubleClick(user.InViewer(0.44, 0.42));
    (void)user.WaitForText("Copy");
    user.Screen().DoubleClick(user.InViewer(0.56, 0.55));
    (void)user.WaitForText("mm, distance", TextMatch::Part);
    user.ClickText("Picks");
    (void)user.WaitForText("Distance", TextMatch::Part);
}

void PickForAlignment(Operator& user) {
    user.Screen().Click(user.WaitForText("bust_002.pcm").Middle(), 3);
    user.ClickText("Only the selected may move");
    (void)WaitForStillScreen(user);  // the menu is gone
    user.Screen().Key("a");
    (void)user.WaitForText("Align by points: click points on what will move", TextMatch::Part);
    user.Screen().Click(user.InViewer(0.58, 0.4));
    (void)user.WaitForText(": 1 point.", TextMatch::Part);
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
    {"objects-menu",
     [](Operator& user) {
         user.Screen().Click(user.WaitForText("bust_002.pcm").Middle(), 3);
         (void)user.WaitForText("Show only these");
     },
     {}},
    {"lasso", DrawLasso, {}},
    {"cut",
     [](Operator& user) {
         DrawLasso(user);
         user.Screen().Click(user.InViewer(0.4, 0.5), 3);  // the last corner
         (void)user.WaitForText("Undo cut (1)");
     },
     {}},
    {"clip-plane",
     [](Operator& user) {
         ClickViewer(user);
         user.Screen().Key("6");
         user.Screen().Key("p");
         (void)user.WaitForText("Clipped by the clip plane");
         user.ClickText("Clip plane");
     },
     {}},
    {"picks", PickTwoPoints, {}},
    {"align", PickForAlignment, {}},
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
    {"german", [](Operator& user) { (void)user.WaitForText("Werkzeuge"); }, {{"LC_ALL", ""}, {"LANG", "de_DE.UTF-8"}}},
};

QRgb LeastLike(const QList<QRgb>& palette, const std::vector<std::pair<int, QRgb>>& colors) {
    QRgb found = 0;
    int largest = -1;
    for (const auto& [pixels, color] : colors) {
        int nearest = 3 * 256;
        for (const QRgb other : palette) {
            nearest = std::min(nearest, std::abs(qRed(color) - qRed(other)) + std::abs(qGreen(color) - qGreen(other)) +
                                            std::abs(qBlue(color) - qBlue(other)));
        }
        if (nearest <= largest) continue;
        largest = nearest;
        found = color;
    }
    return found;
}

/// With a palette of the most frequent colours: a quarter of the file's size.
QImage InFewColors(const QImage& image) {
    constexpr int kColors = 256, kFrequent = 160;
    constexpr QRgb kCell = 0xFFF0F0F0;
    QHash<QRgb, QHash<QRgb, int>> cells;  // pixels by colour, in cells of similar colours
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) ++cells[image.pixel(x, y) & kCell][image.pixel(x, y)];
    }
    std::vector<std::pair<int, QRgb>> ranked;  // the most frequent colour of a cell, by all pixels of the cell
    for (const auto& cell : cells) {
        int pixels = 0, most = 0;
        QRgb color = 0;
        for (auto entry = cell.begin(); entry != cell.end(); ++entry) {
            pixels += entry.value();
            if (std::pair(entry.value(), entry.key()) > std::pair(most, color)) {
                most = entry.value();
                color = entry.key();
            }
        }
        ranked.emplace_back(pixels, color);
    }
    std::ranges::sort(ranked, std::greater());
    QList<QRgb> palette;
    for (std::size_t i = 0; i < ranked.size() && palette.size() < kFrequent; ++i) palette.push_back(ranked[i].second);
    // The others are those least like any before: markers and icons have few pixels.
    while (palette.size() < kColors) palette.push_back(LeastLike(palette, ranked));
    return image.convertToFormat(QImage::Format_Indexed8, palette, Qt::ThresholdDither | Qt::AvoidDither);
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
    (void)WaitForStillScreen(user);
    picture.arrange(user);
    const ScreenShown shown = WaitForStillScreen(user);
    const QImage screen(reinterpret_cast<const uchar*>(shown.pixels.data()), shown.width, shown.height,
                        QImage::Format_RGB32);
    const ScreenArea frame = user.MainWindow().frame;
    return InFewColors(screen.copy(QRect(frame.x, frame.y, frame.width, frame.height) & screen.rect()));
}

QSet<QRgb> ColorsOf(const QImage& image) {
    QSet<QRgb> colors;
    for (int y = 0; y < image.height(); y += 2) {
        for (int x = 0; x < image.width(); x += 2) colors.insert(image.pixel(x, y));
    }
    return colors;
}

struct Difference {
    double mean = 0, largestOfRegion = 0;
    QPoint region;  ///< where the largest is
};

/// Of two pictures of one size.
Difference Measure(const QImage& a, const QImage& b) {
    const QSize blocks(a.width() / kBlock, (a.height() - kStatusBarHeight) / kBlock);
    const auto reduce = [&](const QImage& image) {
        return image.copy(QRect(QPoint(0, 0), blocks * kBlock))
            .convertToFormat(QImage::Format_RGB32)
            .scaled(blocks, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    };
    const QImage left = reduce(a), right = reduce(b);
    QHash<QPoint, double> regions;
    Difference difference;
    for (int y = 0; y < blocks.height(); ++y) {
        for (int x = 0; x < blocks.width(); ++x) {
            const QRgb l = left.pixel(x, y), r = right.pixel(x, y);
            const int block =
                std::max({std::abs(qRed(l) - qRed(r)), std::abs(qGreen(l) - qGreen(r)), std::abs(qBlue(l) - qBlue(r))});
            difference.mean += block;
            regions[QPoint(x / kBlocksPerRegion, y / kBlocksPerRegion)] += block;
        }
    }
    difference.mean /= blocks.width() * blocks.height();
    for (auto region = regions.begin(); region != regions.end(); ++region) {
        const double mean = region.value() / (kBlocksPerRegion * kBlocksPerRegion);
        if (mean <= difference.largestOfRegion) continue;
        difference.largestOfRegion = mean;
        difference.region = region.key() * kBlocksPerRegion * kBlock;
    }
    return difference;
}

/// @return what is wrong with a picture in comparison with another; empty when nothing is
std::string Compare(const QImage& made, const QImage& other) {
    if (ColorsOf(made).size() < 50) return "is nearly blank";
    if (other.isNull()) return "is missing in docs/tour";
    if (made.size() != other.size()) return "has another size";
    const Difference d = Measure(made, other);
    std::printf("  mean difference %.2f, largest of a region %.2f\n", d.mean, d.largestOfRegion);
    if (d.mean > kMeanDifference) return "differs by " + std::to_string(d.mean);
    if (d.largestOfRegion <= kRegionDifference) return {};
    return "differs by " + std::to_string(d.largestOfRegion) + " around " + std::to_string(d.region.x()) + ", " +
           std::to_string(d.region.y());
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

/// Makes one picture, and writes it or compares it. @return what is wrong; empty when nothing is
std::string Check(const TourPicture& picture, const QString& docs, bool writes) {
    const QString file = QString("%1/tour/%2.png").arg(docs, picture.name);
    const QImage made = Make(picture);
    if (writes) return made.save(file) ? "" : "cannot be written";
    (void)made.save(QString(KV_PICTURE_FOLDER "/tour-%1.png").arg(picture.name));
    if (std::string fault = Compare(made, QImage(file)); !fault.empty()) return fault;
    // Without its menu, pane or dialog it would look like the first picture: the comparison must find that.
    const bool isFirst = &picture == std::begin(kPictures);
    const bool isFound = isFirst || !Compare(made, QImage(docs + "/tour/window.png")).empty();
    return isFound ? "" : "is like the first picture";
}

}  // namespace

int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    const QGuiApplication application(argc, argv);
    QStringList arguments = QGuiApplication::arguments().mid(1);
    const bool writes = arguments.removeAll("--write") > 0;
    if (arguments.isEmpty()) {
        std::fputs("usage: tour_pictures [--write] DOCS_FOLDER [NAME...]\n", stderr);
        return 2;
    }
    const QString docs = arguments.takeFirst();
    const QStringList names = arguments;
    std::vector<std::string> faults = FaultsOfPage(docs);
    for (const QString& name : names) {
        if (std::ranges::none_of(kPictures, [&](const TourPicture& picture) { return name == picture.name; }))
            faults.push_back(name.toStdString() + ": there is no such picture");
    }
    std::filesystem::create_directories(KV_PICTURE_FOLDER);
    if (writes) std::filesystem::create_directories((docs + "/tour").toStdString());
    for (const TourPicture& picture : kPictures) {
        if (!names.isEmpty() && !names.contains(picture.name)) continue;
        std::string fault;
        try {
            fault = Check(picture, docs, writes);
        } catch (const std::exception& error) {
            fault = error.what();
        }
        std::printf("%s: %s\n", picture.name, fault.empty() ? "good" : fault.c_str());
        std::fflush(stdout);
        if (!fault.empty()) faults.push_back(std::string(picture.name) + ": " + fault);
    }
    for (const std::string& fault : faults) std::fprintf(stderr, "%s\n", fault.c_str());
    return faults.empty() ? 0 : 1;
}

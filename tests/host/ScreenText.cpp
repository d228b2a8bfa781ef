// A place matches when its pixels mix two brightnesses, of letters and of what is around them, as those of the drawn
// text do.
#include "host/ScreenText.h"

#include <QFont>
#include <QFontMetrics>
#include <QImage>
#include <QPainter>
#include <QStringList>
#include <algorithm>
#include <cstdlib>
#include <functional>
#include <numeric>
#include <vector>

namespace {

constexpr int kContrast = 60;  // between letters and what is around them, at least, of 255
constexpr int kEdge = 24;      // between a letter and what is at its left: only there places are compared
// Of the sum of the squares. Letters begin at fractions of a pixel, of which four are tried.
constexpr double kErrorOfText = 0.14;
constexpr double kErrorOfLetter = 0.3;  // another letter differs by about twice the letter itself

struct Pixel {
    int x = 0, y = 0, ink = 0;  // ink: share of the letters, 0 to 255
};

struct Template {
    int left = 0, right = 0, top = 0, bottom = 0;  // of the letters
    int bandWidth = 1;                             // about that of a letter
    std::vector<Pixel> pixels;                     // those of the letters first: most places differ there
    std::size_t edge = 0;                          // the first pixel that differs much from the one at its left
};

int Brightness(std::uint32_t pixel) {
    const auto part = [&](unsigned shift) { return static_cast<int>(pixel >> shift & 0xFF); };
    return (part(16) * 3 + part(8) * 6 + part(0)) / 10;
}

// @param shift  of the letters to the right, part of a pixel: centred texts begin between two pixels
Template DrawTemplate(const QString& text, double scale, TextMatch match, double shift, QFont::Weight weight) {
    QFont font("Sans Serif", 9, weight);
    const QFontMetrics metrics(font);
    const int margin = match == TextMatch::Whole ? 5 : 0;  // a space is narrower
    const QSizeF size(metrics.boundingRect(QRect(), Qt::TextShowMnemonic, text).width() + 2 * margin + 2,
                      metrics.height() + 2);
    QImage image((size * scale).toSize(), QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setFont(font);
    painter.setPen(Qt::black);
    // As labels and menus are drawn: the letters after a mnemonic are not where they are without one.
    painter.drawText(QRectF(margin + 1 + shift, 1, size.width(), metrics.height()),
                     Qt::AlignLeft | Qt::TextShowMnemonic, text);
    painter.end();
    Template drawn{image.width(), 0, image.height(), 0, static_cast<int>(8 * scale), {}};
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const int ink = 255 - Brightness(image.pixel(x, y));
            drawn.pixels.push_back({x, y, ink});
            if (ink <= 20) continue;
            drawn.left = std::min(drawn.left, x), drawn.right = std::max(drawn.right, x);
            drawn.top = std::min(drawn.top, y), drawn.bottom = std::max(drawn.bottom, y);
        }
    }
    // Above and below the letters there may be a frame.
    std::erase_if(drawn.pixels, [&](const Pixel& p) { return p.y < drawn.top || p.y > drawn.bottom; });
    std::ranges::stable_sort(drawn.pixels, std::greater(), &Pixel::ink);
    const auto isEdge = [&](const Pixel& p) {
        return p.x > 0 && p.ink - (255 - Brightness(image.pixel(p.x - 1, p.y))) > kEdge * 255 / kContrast;
    };
    drawn.edge = static_cast<std::size_t>(std::ranges::find_if(drawn.pixels, isEdge) - drawn.pixels.begin());
    return drawn;
}

/// The screen in one colour, and where it has vertical edges.
struct GrayScreen {
    int width = 0, height = 0;
    std::vector<std::uint8_t> bright;
    std::vector<Pixel> edges;  // from the top
};

GrayScreen InGray(const ScreenShown& shown) {
    GrayScreen gray{shown.width, shown.height, {}, {}};
    gray.bright.resize(shown.pixels.size());
    std::ranges::transform(shown.pixels, gray.bright.begin(),
                           [](std::uint32_t pixel) { return static_cast<std::uint8_t>(Brightness(pixel)); });
    const std::uint8_t* at = gray.bright.data();
    for (int y = 0; y < shown.height; ++y) {
        for (int x = 0; x < shown.width; ++x, ++at) {
            if (x > 0 && std::abs(at[0] - at[-1]) >= kEdge) gray.edges.push_back({x, y, 0});
        }
    }
    return gray;
}

std::optional<ScreenArea> FindTemplate(const GrayScreen& shown, const Template& wanted) {
    if (wanted.edge >= wanted.pixels.size() || wanted.pixels.front().ink < 100) return std::nullopt;
    const auto width = static_cast<std::ptrdiff_t>(shown.width);
    const auto offset = [&](const Pixel& p) { return p.y * width + p.x; };
    const Pixel &inked = wanted.pixels.front(), &empty = wanted.pixels.back();
    // The error of each band of about a letter's width, and the sum of squares that it is compared with.
    const auto band = [&](const Pixel& p) { return static_cast<std::size_t>(p.x / wanted.bandWidth); };
    std::vector<double> squares(band({shown.width, 0, 0}) + 1), errors(squares.size());
    for (const Pixel& p : wanted.pixels) squares[band(p)] += p.ink * p.ink;
    const double all = std::accumulate(squares.begin(), squares.end(), 0.0);
    const double letter = all / (1.0 + static_cast<double>((wanted.right - wanted.left) / wanted.bandWidth));
    const auto matches = [&](const std::uint8_t* at) {
        const int none = at[offset(empty)];
        const int contrast = (at[offset(inked)] - none) * 255 / inked.ink;  // of a pixel that the letters fill
        if (std::abs(contrast) < kContrast) return false;
        const auto squaredError = [&](const Pixel& p) {
            const int error = (at[offset(p)] - none) * 255 / contrast - p.ink;
            return error * error;
        };
        double sum = 0;
        for (const Pixel& p : wanted.pixels)
            if ((sum += squaredError(p)) > kErrorOfText * all) return false;
        std::ranges::fill(errors, 0.0);
        for (const Pixel& p : wanted.pixels) errors[band(p)] += squaredError(p);
        return std::ranges::all_of(errors, [&](double error) { return error < kErrorOfLetter * letter; });
    };
    const int rightmost = std::ranges::max(wanted.pixels, {}, &Pixel::x).x;
    const Pixel& edge = wanted.pixels[wanted.edge];
    for (const Pixel& place : shown.edges) {
        const int x = place.x - edge.x, y = place.y - edge.y;
        const bool isInside =
            x >= 0 && x + rightmost < shown.width && y + wanted.top >= 0 && y + wanted.bottom < shown.height;
        if (!isInside || !matches(shown.bright.data() + y * width + x)) continue;
        return ScreenArea{x + wanted.left, y + wanted.top, wanted.right - wanted.left + 1,
                          wanted.bottom - wanted.top + 1};
    }
    return std::nullopt;
}

}  // namespace

std::optional<ScreenArea> FindText(const ScreenShown& shown, const QString& text, double scale, TextMatch match) {
    const GrayScreen gray = InGray(shown);
    QStringList forms{QString(text).replace('&', "&&")};
    // With each letter as the mnemonic.
    for (qsizetype i = 0; match == TextMatch::Whole && i < text.size(); ++i) {
        if (text[i].isLetterOrNumber()) forms << QString(forms.front()).insert(i, '&');
    }
    for (const QFont::Weight weight : {QFont::Normal, QFont::Bold}) {
        for (const QString& form : forms) {
            for (const double shift : {0.0, 0.5, 0.25, 0.75}) {
                const Template wanted = DrawTemplate(form, scale, match, shift, weight);
                if (const auto place = FindTemplate(gray, wanted)) return place;
            }
        }
    }
    return std::nullopt;
}

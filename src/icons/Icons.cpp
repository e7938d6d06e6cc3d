// SPDX-License-Identifier: Apache-2.0
#include "icons/Icons.h"

#include <QByteArray>
#include <QFile>
#include <QGuiApplication>
#include <QHash>
#include <QIconEngine>
#include <QImage>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QPixmapCache>
#include <QSvgRenderer>
#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace tavrin {
namespace {

// The colours that drawings are written in. An accent is written in its variant for light grounds, so that a
// drawing looks right in any viewer.
struct Accent {
    const char* written;
    QRgb onLight;
    QRgb onDark;
};
constexpr const char* kWrittenInk = "#000000";
constexpr std::array<Accent, 3> kAccents{{
    {"#c46a00", 0xffc46a00, 0xffffb547},  // amber: render, go
    {"#c8281e", 0xffc8281e, 0xffff7a6e},  // red: stop, delete
    {"#1a63c0", 0xff1a63c0, 0xff6cb4ff},  // blue: the state of desk, view and sliders
}};

// A drawing's grid and line, and the raster that its long lines keep to, in its own units.
constexpr int kGrid = 24;
constexpr double kLine = 1.75;
constexpr int kRaster = 3;

// How far a disabled drawing goes towards the ground, and how much of an accent's colour it loses.
constexpr double kDisabledFade = 0.58;
constexpr double kDisabledGreying = 0.7;

QColor Mix(const QColor& from, const QColor& to, double share) {
    const auto between = [share](int a, int b) { return a + static_cast<int>(std::lround((b - a) * share)); };
    return {between(from.red(), to.red()), between(from.green(), to.green()),
            between(from.blue(), to.blue())};
}

// What a drawing is coloured with: the ink, then the accents in the order of the table.
using Colours = std::array<QColor, 1 + kAccents.size()>;

Colours ColoursOf(const QPalette& palette, QIcon::Mode mode) {
    Colours colours;
    if (mode == QIcon::Selected) {
        // The ground has a strong colour of its own here, and accents would drown in it.
        colours.fill(palette.color(QPalette::Active, QPalette::HighlightedText));
        return colours;
    }
    const QColor ground = palette.color(QPalette::Active, QPalette::Window);
    colours[0] = palette.color(QPalette::Active, QPalette::ButtonText);
    const bool dark = qGray(colours[0].rgb()) > qGray(ground.rgb());
    for (std::size_t i = 0; i < kAccents.size(); ++i)
        colours[i + 1] = QColor(dark ? kAccents[i].onDark : kAccents[i].onLight);
    if (mode != QIcon::Disabled) return colours;
    for (QColor& colour : colours) {
        const int grey = qGray(colour.rgb());
        colour = Mix(Mix(colour, QColor(grey, grey, grey), kDisabledGreying), ground, kDisabledFade);
    }
    return colours;
}

// The text of a drawing, read when it is first drawn. Empty if there is none of that path.
QByteArray TextOf(const QString& path) {
    static QHash<QString, QByteArray> texts;
    const auto known = texts.constFind(path);
    if (known != texts.constEnd()) return *known;
    QFile file(path);
    return texts[path] = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The text with the colours that it is written in replaced, each once: none of the new ones is taken for a
// written one.
QByteArray Coloured(QByteArray text, const Colours& colours) {
    constexpr int kLength = 7;  // of "#rrggbb", as QColor::name gives it too
    for (auto at = text.indexOf('#'); at >= 0; at = text.indexOf('#', at + 1)) {
        const QByteArray written = text.mid(at, kLength);
        for (std::size_t i = 0; i < colours.size(); ++i)
            if (written == (i == 0 ? kWrittenInk : kAccents[i - 1].written)) {
                text.replace(at, kLength, colours[i].name().toLatin1());
                break;
            }
    }
    return text;
}

// Where the raster falls on whole pixels, a line that is an odd number of pixels wide would be smeared over
// two of them: half a pixel further it fills one.
double Nudge(int pixels) {
    const bool onRaster = pixels * kRaster % kGrid == 0;
    return onRaster && std::lround(kLine * pixels / kGrid) % 2 == 1 ? 0.5 : 0.0;
}

QPixmap Drawn(const QByteArray& text, int pixels, double nudge) {
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QSvgRenderer renderer(text);
    QPainter painter(&image);
    renderer.render(&painter, QRectF(nudge, nudge, pixels, pixels));
    painter.end();
    return QPixmap::fromImage(image);
}

// Draws one file. The pixmaps are kept in Qt's own cache, under everything that they depend on, so a new
// palette finds no old ink there.
class DrawingEngine : public QIconEngine {
  public:
    // `inked`: the file's colours follow the palette.
    DrawingEngine(QString path, bool inked) : m_path(std::move(path)), m_inked(inked) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
        const double ratio = painter->device()->devicePixelRatioF();
        QPixmap drawn = pixmap((QSizeF(rect.size()) * ratio).toSize(), mode, state);
        drawn.setDevicePixelRatio(ratio);
        const QSizeF size = drawn.deviceIndependentSize();
        painter->drawPixmap(QPointF(rect.x() + (rect.width() - size.width()) / 2,
                                    rect.y() + (rect.height() - size.height()) / 2),
                            drawn);
    }

    // `size` counts device pixels, as Qt asks engines for it.
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) override {
        const int pixels = std::min(size.width(), size.height());
        if (pixels <= 0) return {};
        const Colours colours = ColoursOf(QGuiApplication::palette(), mode);
        QString key = m_path + QLatin1Char('@') + QString::number(pixels);
        if (m_inked)
            for (const QColor& colour : colours) key += colour.name();
        QPixmap drawn;
        if (QPixmapCache::find(key, &drawn)) return drawn;
        const QByteArray text = TextOf(m_path);
        drawn = m_inked ? Drawn(Coloured(text, colours), pixels, Nudge(pixels)) : Drawn(text, pixels, 0);
        QPixmapCache::insert(key, drawn);
        return drawn;
    }

    QSize actualSize(const QSize& size, QIcon::Mode, QIcon::State) override {
        const int side = std::min(size.width(), size.height());
        return {side, side};
    }
    QString key() const override { return QStringLiteral("TavrinDrawing"); }
    QIconEngine* clone() const override { return new DrawingEngine(*this); }

  private:
    QString m_path;
    bool m_inked;
};

QIcon Drawing(const QString& path, bool inked) {
    return QFile::exists(path) ? QIcon(new DrawingEngine(path, inked)) : QIcon();
}

}  // namespace

QIcon Icon(const QString& name) { return Drawing(QStringLiteral(":/icons/drawings/%1.svg").arg(name), true); }

QIcon ApplicationIcon() { return Drawing(QStringLiteral(":/icons/tavrin.svg"), false); }

}  // namespace tavrin

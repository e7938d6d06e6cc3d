// SPDX-License-Identifier: Apache-2.0
#include "icons/Icons.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QSet>
#include <QStyle>
#include <QStyleFactory>
#include <QToolButton>
#include <QXmlStreamReader>
#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "ui/support/Windows.h"

namespace tavrin {
namespace {

const QStringList& Names() {
    static const QStringList names =
        QStringLiteral(
            "new open merge save save-as export-options export-all export run-script halt-script exit "
            "undo redo undo-history render-history keep-render compare-renders cut copy paste delete "
            "stow-all unstow-all pin-all "
            "unpin-all lock-all unlock-all "
            "select-all unselect-all box-finder menu-finder fit-window zoom-reset zoom-in zoom-out "
            "freeze-sliders display-icons straight-lines lines-over-boxes show-varnames lock-desk render "
            "stop-render live render-options argument-editor view-source view-render-interface "
            "view-shader-interface display-log clear-log shader-help documentation about wallpaper customize "
            "status-bar scroll-bars sound-effects debug-mode log-save log-copy log-clear log-wrap "
            "log-editable picture-window picture-single compare-toggle compare-wipe compare-difference "
            "delete-join mute tidy align-left align-centre align-right align-top align-middle align-bottom "
            "distribute-across distribute-down search source minimap "
            "check "
            "examples "
            "frame note")
            .split(' ');
    return names;
}

QString SourceFolder() { return QStringLiteral(TAVRIN_SOURCE_DIR "/src/icons/"); }

QPalette LightPalette() {
    return std::unique_ptr<QStyle>(QStyleFactory::create(QStringLiteral("Fusion")))->standardPalette();
}

QPalette DarkPalette() {
    QPalette palette(QColor(53, 53, 56), QColor(45, 45, 48));
    for (const auto role : {QPalette::WindowText, QPalette::ButtonText, QPalette::Text})
        palette.setColor(role, QColor(225, 225, 225));
    palette.setColor(QPalette::Highlight, QColor(38, 104, 172));
    palette.setColor(QPalette::HighlightedText, QColor(250, 250, 250));
    return palette;
}

// Each test sets palettes of its own and leaves the application's as it found it.
class Icons : public testing::Test {
  protected:
    void SetUp() override { QApplication::setPalette(LightPalette()); }
    void TearDown() override { QApplication::setPalette(m_before); }

  private:
    QPalette m_before = QApplication::palette();
};

// In device pixels.
QImage Picture(const QIcon& icon, int side, double ratio = 1, QIcon::Mode mode = QIcon::Normal) {
    QImage image = icon.pixmap(QSize(side, side), ratio, mode).toImage();
    image.setDevicePixelRatio(1);
    return image.convertToFormat(QImage::Format_ARGB32);
}

QImage Picture(const QString& name, int side, double ratio = 1, QIcon::Mode mode = QIcon::Normal) {
    return Picture(Icon(name), side, ratio, mode);
}

// As it looks on the palette's window colour.
QImage OnWindow(const QImage& picture) {
    QImage ground(picture.size(), QImage::Format_RGB32);
    ground.fill(QApplication::palette().color(QPalette::Window));
    QPainter(&ground).drawImage(0, 0, picture);
    return ground;
}

double Luminance(QRgb colour) {
    const auto linear = [](int channel) {
        const double c = channel / 255.0;
        return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(colour)) + 0.7152 * linear(qGreen(colour)) + 0.0722 * linear(qBlue(colour));
}

double Contrast(QRgb a, QRgb b) {
    const double first = Luminance(a), second = Luminance(b);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

bool IsInk(QRgb pixel) { return qAlpha(pixel) >= 128; }

template <typename Visit>
void EachPixel(const QImage& image, Visit visit) {
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) visit(x, y);
}

int InkedPixels(const QImage& picture) {
    int count = 0;
    EachPixel(picture, [&](int x, int y) { count += IsInk(picture.pixel(x, y)) ? 1 : 0; });
    return count;
}

// The mean contrast of the inked pixels against the window colour.
double MeanContrast(const QImage& picture) {
    const QImage seen = OnWindow(picture);
    const QRgb window = QApplication::palette().color(QPalette::Window).rgb();
    double sum = 0;
    int count = 0;
    EachPixel(picture, [&](int x, int y) {
        if (!IsInk(picture.pixel(x, y))) return;
        sum += Contrast(seen.pixel(x, y), window);
        ++count;
    });
    return count == 0 ? 0 : sum / count;
}

double GreatestSaturation(const QImage& picture) {
    double greatest = 0;
    EachPixel(picture, [&](int x, int y) {
        if (IsInk(picture.pixel(x, y)))
            greatest = std::max(greatest, double{QColor(picture.pixel(x, y)).hsvSaturationF()});
    });
    return greatest;
}

// How many pixels look different at a glance.
int DifferentPixels(const QImage& a, const QImage& b) {
    constexpr int kVisible = 80;  // of the 255 steps of a channel
    int count = 0;
    EachPixel(a, [&](int x, int y) {
        const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
        const int greatest = std::max(
            {std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)), std::abs(qBlue(p) - qBlue(q))});
        count += greatest >= kVisible ? 1 : 0;
    });
    return count;
}

QString FileText(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return QString::fromUtf8(file.readAll());
}

TEST_F(Icons, EveryNameIsDrawnAtEverySizeAndRatio) {
    for (const QString& name : Names())
        for (const int side : {16, 20, 24, 32})
            for (const int ratio : {1, 2}) {
                const QImage picture = Picture(name, side, ratio);
                ASSERT_EQ(picture.size(), QSize(side * ratio, side * ratio)) << name.toStdString();
                const double share = 1.0 * InkedPixels(picture) / (picture.width() * picture.height());
                EXPECT_GT(share, 0.08) << name.toStdString() << " at " << side << " x " << ratio;
                EXPECT_LT(share, 0.60) << name.toStdString() << " at " << side << " x " << ratio;
            }
}

TEST_F(Icons, DrawingsKeepAMarginSoThatNothingIsCutOff) {
    for (const QString& name : Names()) {
        const QImage picture = Picture(name, 24, 2);
        const int last = picture.width() - 1;
        EachPixel(picture, [&](int x, int y) {
            const bool onEdge = x == 0 || y == 0 || x == last || y == last;
            EXPECT_TRUE(!onEdge || qAlpha(picture.pixel(x, y)) == 0)
                << name.toStdString() << " at " << x << ", " << y;
        });
    }
}

TEST_F(Icons, TheFolderTheResourcesAndTheNamesAreTheSame) {
    const auto sorted = [](QStringList names) {
        names.sort();
        return names.join(' ').toStdString();
    };
    QStringList expected;
    for (const QString& name : Names()) expected << name + QStringLiteral(".svg");
    const QDir folder(SourceFolder() + QStringLiteral("drawings"));
    EXPECT_EQ(sorted(folder.entryList(QDir::Files)), sorted(expected));
    EXPECT_EQ(sorted(QDir(QStringLiteral(":/icons/drawings")).entryList()), sorted(expected));
}

TEST_F(Icons, AnUnknownNameGivesANullIcon) {
    EXPECT_TRUE(Icon(QStringLiteral("no-such-drawing")).isNull());
    EXPECT_TRUE(Icon(QString()).isNull());
    EXPECT_FALSE(Icon(QStringLiteral("save")).isNull());
}

TEST_F(Icons, InkStandsOutFromLightAndDarkWindows) {
    for (const QPalette& palette : {LightPalette(), DarkPalette()}) {
        QApplication::setPalette(palette);
        for (const QString& name : Names())
            for (const int side : {16, 20, 24, 32})
                EXPECT_GE(MeanContrast(Picture(name, side)), 4.5) << name.toStdString() << " at " << side;
    }
}

TEST_F(Icons, NoTwoIconsLookAlike) {
    constexpr int kLeast = 12;  // pixels of 576: the upright that makes a plus of a minus
    for (int i = 0; i < Names().size(); ++i)
        for (int k = i + 1; k < Names().size(); ++k)
            EXPECT_GE(DifferentPixels(OnWindow(Picture(Names()[i], 24)), OnWindow(Picture(Names()[k], 24))),
                      kLeast)
                << Names()[i].toStdString() << " and " << Names()[k].toStdString();
}

TEST_F(Icons, ADisabledIconIsPalerButStillThere) {
    for (const QPalette& palette : {LightPalette(), DarkPalette()}) {
        QApplication::setPalette(palette);
        for (const QString& name : Names()) {
            const double enabled = MeanContrast(Picture(name, 24));
            const double disabled = MeanContrast(Picture(name, 24, 1, QIcon::Disabled));
            EXPECT_LT(disabled, enabled * 0.6) << name.toStdString();
            EXPECT_GT(disabled, 1.3) << name.toStdString();
        }
    }
}

TEST_F(Icons, ADisabledIconLosesMostOfItsAccent) {
    for (const QPalette& palette : {LightPalette(), DarkPalette()}) {
        QApplication::setPalette(palette);
        for (const char* name : {"render", "stop-render", "lock-all"}) {
            const double enabled = GreatestSaturation(Picture(QLatin1String(name), 24));
            EXPECT_GT(enabled, 0.5) << name;
            EXPECT_LT(GreatestSaturation(Picture(QLatin1String(name), 24, 1, QIcon::Disabled)), enabled / 2)
                << name;
        }
    }
}

TEST_F(Icons, ASelectedIconHasTheColourOfTheTextAroundIt) {
    const QColor text = QApplication::palette().color(QPalette::HighlightedText);
    const QImage picture = Picture(QStringLiteral("stop-render"), 24, 1, QIcon::Selected);
    EachPixel(picture, [&](int x, int y) {
        const QRgb pixel = picture.pixel(x, y);
        EXPECT_TRUE(qAlpha(pixel) < 255 || QColor(pixel) == text) << x << ", " << y;
    });
}

TEST_F(Icons, AnIconThatWasMadeBeforeFollowsANewPaletteAndBack) {
    QToolButton button;
    button.setIcon(Icon(QStringLiteral("save")));
    const auto darkest = [&] {
        const QImage seen = OnWindow(Picture(button.icon(), 24));
        int value = 255;
        EachPixel(seen, [&](int x, int y) { value = std::min(value, qGray(seen.pixel(x, y))); });
        return value;
    };
    const QImage light = button.grab().toImage();
    EXPECT_LT(darkest(), 60);
    QApplication::setPalette(DarkPalette());
    test::HandleEvents();
    EXPECT_EQ(darkest(), qGray(DarkPalette().color(QPalette::Window).rgb()))
        << "ink is lighter than the window";
    EXPECT_GE(MeanContrast(Picture(button.icon(), 24)), 4.5);
    EXPECT_NE(button.grab().toImage(), light);
    QApplication::setPalette(LightPalette());
    test::HandleEvents();
    EXPECT_EQ(button.grab().toImage(), light);
}

TEST_F(Icons, PaintingOnAFineScreenUsesAllItsPixels) {
    const QIcon icon = Icon(QStringLiteral("render-options"));
    QPixmap screen(QSize(48, 48));
    screen.setDevicePixelRatio(2);
    screen.fill(Qt::transparent);
    QPainter painter(&screen);
    icon.paint(&painter, QRect(0, 0, 24, 24));
    painter.end();
    QImage seen = screen.toImage().convertToFormat(QImage::Format_ARGB32);
    seen.setDevicePixelRatio(1);
    EXPECT_EQ(seen, Picture(icon, 48));
}

TEST_F(Icons, AnIconStandsInTheMiddleOfALongRectangle) {
    const QIcon icon = Icon(QStringLiteral("about"));
    QImage image(64, 24, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    icon.paint(&painter, QRect(0, 0, 64, 24));
    painter.end();
    EXPECT_EQ(image.copy(20, 0, 24, 24).convertToFormat(QImage::Format_ARGB32), Picture(icon, 24));
}

TEST_F(Icons, LongLinesFillWholePixels) {
    // Across the left edge of the sheet in front, which stands at 9 of the 24 units.
    const auto strengths = [](int side) {
        const QImage picture = Picture(QStringLiteral("copy"), side);
        std::vector<int> found;
        for (int x = 0; x < side / 2; ++x) found.push_back(qAlpha(picture.pixel(x, side * 3 / 4)));
        return found;
    };
    const auto full = [](const std::vector<int>& found) {
        return std::count_if(found.begin(), found.end(), [](int alpha) { return alpha >= 185; });
    };
    EXPECT_EQ(full(strengths(16)), 1);
    EXPECT_EQ(full(strengths(24)), 2);
    EXPECT_EQ(full(strengths(32)), 2);
    EXPECT_EQ(full(strengths(48)), 4);
}

// What is wrong with an element of a drawing: an empty text if nothing. Accents used are added to the set.
QString Fault(const QXmlStreamReader& element, QSet<QString>& accentsUsed) {
    static const QSet<QString> accents{QStringLiteral("#c46a00"), QStringLiteral("#c8281e"),
                                       QStringLiteral("#1a63c0")};
    static const QSet<QString> inks{QStringLiteral("none"), QStringLiteral("#000000")};
    static const QHash<QString, QSet<QString>> allowed{
        {QStringLiteral("svg"),
         {QStringLiteral("width"), QStringLiteral("height"), QStringLiteral("viewBox")}},
        {QStringLiteral("g"),
         {QStringLiteral("fill"), QStringLiteral("stroke"), QStringLiteral("stroke-width"),
          QStringLiteral("stroke-linecap"), QStringLiteral("stroke-linejoin")}},
        {QStringLiteral("path"), {QStringLiteral("d"), QStringLiteral("fill"), QStringLiteral("stroke")}},
    };
    static const QHash<QString, QString> fixed{
        {QStringLiteral("viewBox"), QStringLiteral("0 0 24 24")},
        {QStringLiteral("stroke-width"), QStringLiteral("1.75")},
        {QStringLiteral("stroke-linecap"), QStringLiteral("round")},
        {QStringLiteral("stroke-linejoin"), QStringLiteral("round")},
    };
    const QString tag = element.name().toString();
    if (!allowed.contains(tag)) return QStringLiteral("element ") + tag;
    for (const QXmlStreamAttribute& attribute : element.attributes()) {
        const QString name = attribute.name().toString(), value = attribute.value().toString();
        if (!allowed[tag].contains(name)) return QStringLiteral("attribute ") + name;
        if (fixed.contains(name) && value != fixed[name]) return name + QLatin1Char(' ') + value;
        if (name != QLatin1String("fill") && name != QLatin1String("stroke")) continue;
        if (accents.contains(value))
            accentsUsed.insert(value);
        else if (!inks.contains(value))
            return QStringLiteral("colour ") + value;
    }
    return {};
}

TEST_F(Icons, FilesKeepTheGridTheLineAndTheColours) {
    for (const QString& name : Names()) {
        SCOPED_TRACE(name.toStdString());
        const QString text = FileText(SourceFolder() + QStringLiteral("drawings/%1.svg").arg(name));
        EXPECT_TRUE(text.contains(QLatin1String("viewBox=")));
        EXPECT_TRUE(text.contains(QLatin1String("stroke-width=")));
        QXmlStreamReader reader(text);
        QSet<QString> accentsUsed;
        while (!reader.atEnd()) {
            if (reader.readNext() != QXmlStreamReader::StartElement) continue;
            EXPECT_EQ(Fault(reader, accentsUsed).toStdString(), "");
        }
        EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
        EXPECT_LE(accentsUsed.size(), 1) << "one meaning, one accent";
    }
}

TEST_F(Icons, TheApplicationsOwnIconShowsItsColoursAtEverySize) {
    for (const int side : {16, 32, 48, 256}) {
        const QImage picture = Picture(ApplicationIcon(), side);
        ASSERT_EQ(picture.size(), QSize(side, side));
        EXPECT_EQ(qAlpha(picture.pixel(side / 2, side / 2)), 255) << side;
        EXPECT_EQ(qAlpha(picture.pixel(0, 0)), 0) << side;
        const QColor ball(picture.pixel(side * 40 / 64, side * 40 / 64));
        EXPECT_GT(ball.red(), ball.blue() + 80) << side << ": the ball is amber";
        const QColor header(picture.pixel(side * 18 / 64, side * 13 / 64));
        EXPECT_GT(header.blue(), header.red() + 60) << side << ": the box has a blue head";
    }
}

TEST_F(Icons, TheApplicationsOwnIconIsTheSameOnEveryPalette) {
    const QImage light = Picture(ApplicationIcon(), 48);
    QApplication::setPalette(DarkPalette());
    EXPECT_EQ(Picture(ApplicationIcon(), 48), light);
}

}  // namespace
}  // namespace tavrin

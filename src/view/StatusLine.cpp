// SPDX-License-Identifier: Apache-2.0
#include "view/StatusLine.h"

#include <QGridLayout>
#include <QLabel>
#include <QPainter>

namespace tavrin {

namespace {

constexpr int kSwatch = 14;  // pixels a side
constexpr double kMost = 255;

QString SizeText(QSize size) { return QString("%1 x %2").arg(size.width()).arg(size.height()); }

}  // namespace

class StatusLine::Swatch : public QWidget {
  public:
    explicit Swatch(QWidget* parent) : QWidget(parent) {
        setObjectName("swatch");
        setFixedSize(kSwatch, kSwatch);
    }
    void Show(const std::optional<QRgb>& colour) {
        m_colour = colour;
        update();
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        if (!m_colour) return;
        QPainter painter(this);
        const QRect inside = rect().adjusted(1, 1, -1, -1);
        painter.fillRect(rect(), palette().color(QPalette::Mid));
        painter.fillRect(inside, Qt::white);
        painter.fillRect(inside, Qt::Dense4Pattern);
        painter.fillRect(inside, QColor::fromRgba(*m_colour));
    }

  private:
    std::optional<QRgb> m_colour;
};

QString PixelText(QRgb pixel) {
    const bool isOpaque = qAlpha(pixel) == 255;
    QString text = QString("R %1  G %2  B %3").arg(qRed(pixel)).arg(qGreen(pixel)).arg(qBlue(pixel));
    if (!isOpaque) text += QString("  A %1").arg(qAlpha(pixel));
    const auto add = [&text](int channel) { text += " " + QString::number(channel / kMost, 'f', 3); };
    text += "  ";
    add(qRed(pixel));
    add(qGreen(pixel));
    add(qBlue(pixel));
    if (!isOpaque) add(qAlpha(pixel));
    return text;
}

QString MissingText(QSize first, QSize second) {
    if (first == second) return {};
    return QString("A is %1, B is %2: compared from the top left corner")
        .arg(SizeText(first), SizeText(second));
}

QString DifferenceText(const PictureDifference& difference) {
    if (difference.picture == nullptr) return "nothing in common";
    return QString("max %1  mean %2").arg(difference.greatest).arg(difference.mean, 0, 'f', 3);
}

QString ZoomText(double zoom) {
    const double percent = zoom * 100;
    return QString::number(percent, 'f', percent < 10 ? 1 : 0) + " %";
}

StatusLine::StatusLine(QWidget* parent) : QWidget(parent) {
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(8, 4, 8, 4);
    grid->setVerticalSpacing(2);
    grid->setColumnStretch(1, 1);
    m_first = AddLine(0);
    m_second = AddLine(1);
}

StatusLine::Line StatusLine::AddLine(int row) {
    auto* grid = static_cast<QGridLayout*>(layout());
    Line line{new Swatch(this), new QLabel(this), new QLabel(this)};
    for (QLabel* label : {line.values, line.figures}) {
        label->setTextFormat(Qt::PlainText);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    }
    line.values->setObjectName(QString("values%1").arg(row + 1));
    line.figures->setObjectName(QString("figures%1").arg(row + 1));
    line.figures->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    // A narrow window cuts the text rather than growing.
    line.values->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    grid->addWidget(line.swatch, row, 0);
    grid->addWidget(line.values, row, 1);
    grid->addWidget(line.figures, row, 2);
    return line;
}

void StatusLine::TellPixel(const Line& line, const QString& before, const std::optional<QRgb>& pixel) {
    line.swatch->Show(pixel);
    line.values->setText(pixel ? before + PixelText(*pixel) : QString());
}

void StatusLine::Tell(const PictureCanvas& canvas) {
    const bool isCompared = canvas.ModeShown() != PictureCanvas::Mode::kSingle;
    const auto pointed = canvas.UnderPointer();
    const QString place =
        pointed ? QString("%1, %2    ").arg(pointed->pixel.x()).arg(pointed->pixel.y()) : QString();
    TellPixel(m_first, place, pointed ? pointed->first : std::nullopt);
    TellPixel(m_second, place, pointed ? pointed->second : std::nullopt);
    for (QWidget* widget : {static_cast<QWidget*>(m_second.swatch), static_cast<QWidget*>(m_second.values),
                            static_cast<QWidget*>(m_second.figures)})
        widget->setVisible(isCompared);
    const PicturePtr& first = canvas.First();
    m_first.figures->setText(first == nullptr ? QString()
                                              : SizeText(first->Size()) + "   " + ZoomText(canvas.Zoom()));
    QString told;
    if (isCompared) told = MissingText(first->Size(), canvas.Second()->Size());
    if (!told.isEmpty() && !pointed) m_second.values->setText(told);
    setToolTip(told);
    m_second.figures->setText(canvas.Differing() != nullptr ? DifferenceText(*canvas.Differing())
                                                            : QString());
}

}  // namespace tavrin

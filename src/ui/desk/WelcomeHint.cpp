// SPDX-License-Identifier: Apache-2.0
#include "ui/desk/WelcomeHint.h"

#include <QMouseEvent>
#include <QPainter>
#include <QTimer>
#include <algorithm>
#include <utility>

#include "app/Examples.h"
#include "app/Workspace.h"
#include "render/NetworkCheck.h"
#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"

namespace tavrin {

namespace {

constexpr const char* kLink = "Open an example";
constexpr int kPadding = 18;      // pixels between the texts and the panel's edge
constexpr int kLeading = 6;       // between two lines
constexpr int kCorner = 8;        // radius
constexpr int kPanelAlpha = 205;  // what a wallpaper is seen through
constexpr qreal kLarger = 1.25;   // the link, against the text
constexpr qreal kPale = 0.86;     // opacity of the text

QColor ColorOf(const Rgb& rgb) { return QColor::fromRgbF(rgb.r, rgb.g, rgb.b); }

// Of the inks for a dark and for a light ground, the one that can be read.
QColor Readable(const Rgb& ground, QRgb onDark, QRgb onLight) {
    const float light = 0.299F * ground.r + 0.587F * ground.g + 0.114F * ground.b;
    return light < 0.5F ? QColor(onDark) : QColor(onLight);
}

}  // namespace

WelcomeHint::WelcomeHint(QWidget& desk, Needs needs)
    : QWidget(&desk), m_desk(desk), m_needs(std::move(needs)) {
    setObjectName("welcome");
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    hide();
    QStringList said = Lines();
    if (m_needs.openExamples) said.prepend(kLink);
    setAccessibleName(said.join('\n'));
    desk.installEventFilter(this);
    Refresh();
}

void WelcomeHint::AddTo(DeskPane& pane, Workspace& work, std::function<void()> openExamples) {
    const Site& site = work.app.GetSite();
    int isWanted = 0;
    if (!site.settings.GetSettingInt("desk.welcome", isWanted) || isWanted == 0) return;
    std::string lastBox;
    site.settings.GetSettingToken(kOutputBoxesKey, lastBox);
    if (ExamplesDirectory(site).empty()) openExamples = nullptr;
    new WelcomeHint(pane.Desk(), {work.document, work.desk, DeskStyle::Read(site.settings).background,
                                  lastBox, std::move(openExamples)});
}

QStringList WelcomeHint::Lines() const {
    const QString how = m_needs.desk.Rules().search ? "press Tab, or type, to search for an operator"
                                                    : "choose operators from the menus";
    QStringList lines(m_needs.openExamples ? "or " + how : how.left(1).toUpper() + how.mid(1));
    if (!m_needs.lastBox.empty())
        lines << "A network ends in a " + Shown(m_needs.lastBox) + " box; F1 renders it";
    return lines;
}

QFont WelcomeHint::LinkFont() const {
    QFont larger = font();
    larger.setPointSizeF(std::max(1.0, larger.pointSizeF() * kLarger));
    larger.setUnderline(true);
    return larger;
}

WelcomeHint::Layout WelcomeHint::LayOut() const {
    const QStringList lines = Lines();
    const QFontMetrics letters(font());
    QSize text(0, static_cast<int>(lines.size()) * (letters.lineSpacing() + kLeading) - kLeading);
    for (const QString& line : lines) text = text.expandedTo({letters.horizontalAdvance(line), 0});
    QSize link(0, 0);
    if (m_needs.openExamples) {
        const QFontMetrics larger(LinkFont());
        link = {larger.horizontalAdvance(kLink), larger.lineSpacing() + kLeading};
    }
    QRect inner({0, 0}, QSize(std::max(text.width(), link.width()), text.height() + link.height()));
    inner.moveCenter(rect().center());
    const QRect linkRect(inner.center().x() - link.width() / 2, inner.top(), link.width(), link.height());
    return {inner.adjusted(-kPadding, -kPadding, kPadding, kPadding), linkRect,
            inner.adjusted(0, link.height(), 0, 0)};
}

QRect WelcomeHint::LinkRect() const { return m_needs.openExamples ? LayOut().link : QRect(); }

bool WelcomeHint::IsWanted() const {
    return m_needs.document.IsBare() && !m_needs.desk.HasPending() && m_needs.document.lock == 0;
}

void WelcomeHint::Refresh() {
    setGeometry(m_desk.rect());
    const bool isWanted = IsWanted();
    if (!isWanted) SetHovered(false);
    if (isWanted == isHidden()) setVisible(isWanted);
}

void WelcomeHint::SetHovered(bool isHovered) {
    if (std::exchange(m_isHovered, isHovered) == isHovered) return;
    if (isHovered) {
        m_desk.setCursor(Qt::PointingHandCursor);
    } else {
        m_desk.unsetCursor();
    }
    update();
}

// The desk repaints whenever something comes or goes. Windows are not to be shown or hidden within a paint.
bool WelcomeHint::eventFilter(QObject* watched, QEvent* event) {
    const auto mouse = [event] { return static_cast<QMouseEvent*>(event); };
    switch (event->type()) {
        case QEvent::Resize:
        case QEvent::Paint:
        case QEvent::EnabledChange:
            QTimer::singleShot(0, this, [this] { Refresh(); });
            break;
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
            if (HearPress(mouse()->pos(), mouse()->button())) return true;
            break;
        case QEvent::MouseButtonRelease:
            if (HearRelease(mouse()->pos(), mouse()->button())) return true;
            break;
        case QEvent::MouseMove:
            if (HearMove(mouse()->pos(), mouse()->buttons())) return true;
            break;
        case QEvent::Leave:
            SetHovered(false);
            break;
        default:
            break;
    }
    return QWidget::eventFilter(watched, event);
}

// The press of a box that waits at the mouse drops it, wherever that is.
bool WelcomeHint::HearPress(const QPoint& at, Qt::MouseButton button) {
    m_isPressed = button == Qt::LeftButton && IsWanted() && LinkRect().contains(at);
    return m_isPressed;
}

// What the pointer looks like over the link is nobody else's matter.
bool WelcomeHint::HearMove(const QPoint& at, Qt::MouseButtons held) {
    SetHovered(held == Qt::NoButton && IsWanted() && LinkRect().contains(at));
    return m_isHovered || m_isPressed;
}

bool WelcomeHint::HearRelease(const QPoint& at, Qt::MouseButton button) {
    if (button != Qt::LeftButton || !std::exchange(m_isPressed, false)) return false;
    if (LinkRect().contains(at)) QTimer::singleShot(0, this, [this] { m_needs.openExamples(); });
    return true;
}

void WelcomeHint::paintEvent(QPaintEvent* /*event*/) {
    const Layout places = LayOut();
    if (!rect().contains(places.panel)) return;  // half a sentence helps nobody
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor panel = ColorOf(m_needs.background);
    panel.setAlpha(kPanelAlpha);
    painter.setPen(Qt::NoPen);
    painter.setBrush(panel);
    painter.drawRoundedRect(places.panel, kCorner, kCorner);
    if (m_needs.openExamples) {
        painter.setFont(LinkFont());
        painter.setPen(m_isHovered ? Readable(m_needs.background, qRgb(255, 255, 255), qRgb(0, 0, 0))
                                   : Readable(m_needs.background, qRgb(160, 212, 255), qRgb(0, 64, 140)));
        painter.drawText(places.link, Qt::AlignHCenter | Qt::AlignTop, kLink);
    }
    painter.setFont(font());
    painter.setPen(Readable(m_needs.background, qRgb(255, 255, 255), qRgb(0, 0, 0)));
    painter.setOpacity(kPale);
    const int step = painter.fontMetrics().lineSpacing() + kLeading;
    QRect line(places.lines.topLeft(), QSize(places.lines.width(), step));
    for (const QString& text : Lines()) {
        painter.drawText(line, Qt::AlignHCenter | Qt::AlignTop, text);
        line.translate(0, step);
    }
}

}  // namespace tavrin

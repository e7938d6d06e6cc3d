// SPDX-License-Identifier: Apache-2.0
#include "ui/desk/DeskPane.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QCursor>
#include <QGridLayout>
#include <QKeyEvent>
#include <QMenu>
#include <QScrollBar>
#include <QTimer>
#include <QWheelEvent>
#include <algorithm>
#include <cstdlib>

#include "base/Paths.h"
#include "desk/BoxMarks.h"
#include "site/Site.h"
#include "ui/desk/DeskContextMenu.h"
#include "ui/desk/Minimap.h"

namespace tavrin {

namespace {

constexpr int kNoFontStatus = -1;  // exit status where there is no font to be had
constexpr int kLeastRoom = 100;    // pixels a side, of a part of the desk that a box is shown in
constexpr int kLitTime = 1500;     // milliseconds for which a box is lit that one was led to

// The wheel zooms wherever it is turned over the pane.
class DeskScrollBar : public QScrollBar {
  public:
    using QScrollBar::QScrollBar;

  protected:
    void wheelEvent(QWheelEvent* event) override { event->ignore(); }
};

// Nothing for what moves no bar, such as the end of a drag.
std::optional<ScrollAction> ActionOf(int sliderAction) {
    switch (sliderAction) {
        case QAbstractSlider::SliderSingleStepSub:
            return ScrollAction::kLineUp;
        case QAbstractSlider::SliderSingleStepAdd:
            return ScrollAction::kLineDown;
        case QAbstractSlider::SliderPageStepSub:
            return ScrollAction::kPageUp;
        case QAbstractSlider::SliderPageStepAdd:
            return ScrollAction::kPageDown;
        case QAbstractSlider::SliderMove:
            return ScrollAction::kThumb;
        case QAbstractSlider::SliderToMinimum:
            return ScrollAction::kTop;
        case QAbstractSlider::SliderToMaximum:
            return ScrollAction::kBottom;
        default:
            return std::nullopt;
    }
}

// The text that a search begins with by this key: none by Tab alone. Nothing for keys that begin no search.
std::optional<QString> SearchBegunBy(const QKeyEvent& key) {
    const auto held = key.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier);
    if (key.key() == Qt::Key_Tab && key.modifiers() == Qt::NoModifier) return QString();
    const QString text = key.text();
    // A letter that the keyboard makes with AltGr is one as well.
    const bool isCommand = held != Qt::NoModifier && held != Qt::GroupSwitchModifier;
    if (isCommand || text.isEmpty() || !text.at(0).isPrint() || text.at(0).isSpace()) return std::nullopt;
    return text;
}

// A bar of the toolkit ends at its last position, not at the far end of what there is.
void Show(QScrollBar& bar, const ScrollRange& range) {
    bar.setRange(range.minimum, std::max(range.maximum - range.page, range.position));
    bar.setPageStep(range.page);
    bar.setValue(range.position);
    bar.setEnabled(range.canScroll);
}

}  // namespace

DeskPane::DeskPane(QWidget* parent, CTvDoc& document, COpDesk& desk, Site& site, Needs needs)
    : QWidget(parent),
      m_document(document),
      m_desk(desk),
      m_site(site),
      m_needs(std::move(needs)),
      m_style(DeskStyle::Read(site.settings)),
      m_view(document, m_style.zoom),
      m_fonts(m_style.font,
              [this](const std::string& message) {
                  QTimer::singleShot(0, this, [this, message] { m_needs.fail(message, kNoFontStatus); });
              },
              {m_style.smoothText, m_style.leastLetters}),
      m_gestures({document, desk, m_view, *this, site.report, m_style.connectWidth, m_needs.showStatus,
                  m_needs.wireDropped, m_needs.marks}),
      m_menu({document, desk, m_gestures, *this, site.types, m_needs.editFile, m_needs.shownOutput,
              m_needs.toggleShown, [this](int number) { EditFrame(number); }, m_needs.marks}),
      m_icons(site.directories.tavrnDir, m_style, site.report),
      m_types(site.types),
      m_parts{document, desk, m_gestures, m_style, m_icons, &m_types},
      m_widget(new DeskWidget(
          this, m_gestures,
          {[this] { ContextIsNew(); }, [this] { Paint(); }, [this] { Resized(); },
           [this](const std::string& message) { m_needs.fail(message, EXIT_FAILURE); },
           [this](QPoint at) { OpenMenu(at); }, [this](QPoint at) { return EditFrameAt(at); }})),
      m_minimap(new Minimap(m_widget, {document, m_view, m_style,
                                       [this](DeskPoint middle) {
                                           m_view.CentreView(middle);
                                           ViewChanged(true);
                                       }})),
      m_across(MakeScrollBar(Qt::Horizontal)),
      m_down(MakeScrollBar(Qt::Vertical)) {
    setFocusPolicy(Qt::ClickFocus);  // a click takes the keys from a field beside the desk
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(0);
    grid->addWidget(m_widget, 0, 0);
    grid->addWidget(m_down, 0, 1);
    grid->addWidget(m_across, 1, 0);
    grid->setRowStretch(0, 1);
    grid->setColumnStretch(0, 1);
    LoadWallpaper();
    m_lit.setSingleShot(true);
    m_lit.setInterval(kLitTime);
    m_lit.callOnTimeout([this] {
        m_litBox.clear();
        Repaint();
    });
    if (m_needs.marks != nullptr) m_marks = m_needs.marks->afterChange.Add([this] { Repaint(); });
    m_desk.SetView(this);
    m_changes = m_document.edits.Observe([this](const Change& change) { OnChange(change); });
    m_fonts.MetricsOf(0);  // a platform without fonts is to fail at once, by the smallest size
}

DeskPane::~DeskPane() { m_desk.SetView(nullptr); }

void DeskPane::OnChange(const Change& change) {
    if (change.replaced || change.swapped) m_gestures.Cancel();
    if (change.HasBoxes() || change.selection || change.frames) m_minimap->NetworkChanged();
    if (change.HasBoxes()) UpdateScrollBars();
    if (!change.IsSeenOnDesk()) return;
    m_gestures.LookAgain();
    Repaint();
}

QScrollBar* DeskPane::MakeScrollBar(Qt::Orientation orientation) {
    auto* bar = new DeskScrollBar(orientation, this);
    connect(bar, &QScrollBar::actionTriggered, this,
            [this, orientation](int action) { Scroll(orientation, action); });
    return bar;
}

void DeskPane::LayOut(COpBox& box, const TextMeasure& measure) {
    const CSgiImage* icon = m_icons.IconOf(box, false);
    tavrin::LayoutBox(box, m_view.Zoom(), measure,
                      icon == nullptr ? IconSize{} : IconSize{icon->width, icon->height});
}

void DeskPane::LayoutBox(COpBox& box) { LayOut(box, DeskTextMeasure(m_fonts, m_view.Zoom())); }

void DeskPane::LayoutAll() {
    const DeskTextMeasure measure(m_fonts, m_view.Zoom());
    for (const auto& box : m_document.m_boxes) LayOut(*box, measure);
    for (const auto& box : m_desk.m_pendingBoxes) LayOut(*box, measure);
    for (const auto& box : m_desk.m_clipboardBoxes) LayOut(*box, measure);
}

void DeskPane::Repaint() {
    m_widget->update();
    const DeskGestures::Kind gesture = m_gestures.Current();
    if (gesture == DeskGestures::Kind::kMoving || gesture == DeskGestures::Kind::kResizing)
        m_minimap->NetworkChanged();
    if (m_frameEditor != nullptr) m_frameEditor->Follow();
}

void DeskPane::SetWallpaper(std::unique_ptr<CSgiImage> image) {
    m_wallpaper = std::move(image);
    Repaint();
}

void DeskPane::LoadWallpaper() {
    if (m_style.wallpaper.empty()) return;
    auto image = std::make_unique<CSgiImage>(
        ResolvePath(m_style.wallpaper, m_site.directories.tavrnDir),
        [this](const std::string& warning) { m_site.report.LogLine("%s", warning.c_str()); });
    if (image->pixels != nullptr) m_wallpaper = std::move(image);
}

void DeskPane::ViewChanged(bool changed) {
    if (!changed) return;
    UpdateScrollBars();
    m_gestures.LookAgain();
    Repaint();
}

// The largest part of the desk beside the window that one came from, such as the log, which lies over it.
QRect DeskPane::FreePart() const {
    const QRect desk = m_widget->rect();
    const QWidget* active = QApplication::activeWindow();
    if (active == nullptr || active == window()) return desk;
    const QRect over(m_widget->mapFromGlobal(active->frameGeometry().topLeft()),
                     active->frameGeometry().size());
    if (!over.intersects(desk)) return desk;
    QRect best;
    for (const QRect& part : {desk.adjusted(over.right() - desk.left() + 1, 0, 0, 0),
                              QRect(desk.topLeft(), QPoint(over.left() - 1, desk.bottom())),
                              desk.adjusted(0, over.bottom() - desk.top() + 1, 0, 0),
                              QRect(desk.topLeft(), QPoint(desk.right(), over.top() - 1))}) {
        const bool isLarger = part.isValid() && part.width() * part.height() > best.width() * best.height();
        if (isLarger && desk.contains(part)) best = part;
    }
    const bool hasRoom = best.width() >= kLeastRoom && best.height() >= kLeastRoom;
    return hasRoom ? best : desk;
}

void DeskPane::GoToBox(const std::string& boxTitleWid) {
    if (m_document.lock == 0) m_desk.SelectBox(boxTitleWid);
    if (m_view.CentreOnBox(boxTitleWid)) {
        const auto onDesk = [this](QPoint at) {
            return m_view.ToDesk({static_cast<float>(at.x()), static_cast<float>(at.y())});
        };
        const DeskPoint box = onDesk(m_widget->rect().center());
        const DeskPoint free = onDesk(FreePart().center());
        m_view.CentreView({2 * box.x - free.x, 2 * box.y - free.y});
        ViewChanged(true);
    }
    m_litBox = boxTitleWid;
    m_lit.start();
    Repaint();
}

void DeskPane::SetScrollBarsShown(bool shown) {
    m_showScrollBars = shown;
    UpdateScrollBars();
}

void DeskPane::UpdateScrollBars() {
    m_minimap->ViewChanged();
    m_across->setVisible(m_showScrollBars);
    m_down->setVisible(m_showScrollBars);
    if (!m_showScrollBars) return;
    const ScrollRanges ranges = m_view.Ranges();
    Show(*m_across, ranges.across);
    Show(*m_down, ranges.down);
}

void DeskPane::Scroll(Qt::Orientation orientation, int sliderAction) {
    const auto action = ActionOf(sliderAction);
    if (!action) return;
    if (orientation == Qt::Horizontal) {
        m_view.ScrollHorizontally(*action, m_across->sliderPosition());
    } else {
        m_view.ScrollVertically(*action, m_down->sliderPosition());
    }
    ViewChanged(true);
}

// Before the toolkit takes the Tab key for going on to the next field.
bool DeskPane::event(QEvent* event) {
    if (event->type() == QEvent::KeyPress && m_needs.search) {
        const auto begun = SearchBegunBy(static_cast<const QKeyEvent&>(*event));
        if (begun && m_gestures.Current() == DeskGestures::Kind::kIdle && m_needs.search(*begun)) {
            event->accept();
            return true;
        }
    }
    return QWidget::event(event);
}

void DeskPane::wheelEvent(QWheelEvent* event) {
    event->accept();
    int notches = m_wheel.Turn(*event);
    for (; notches > 0; --notches) ViewChanged(m_view.Wheel(1));
    for (; notches < 0; ++notches) ViewChanged(m_view.Wheel(-1));
}

// The platform asks when the mouse goes down; here the menu comes when it goes up, from the widget.
void DeskPane::contextMenuEvent(QContextMenuEvent* event) {
    event->accept();
    const QPoint at = m_widget->mapFromGlobal(QCursor::pos());
    if (event->reason() == QContextMenuEvent::Keyboard && m_widget->rect().contains(at)) OpenMenu(at);
}

void DeskPane::OpenMenu(QPoint at) {
    const auto entries = m_menu.Open(m_view.ToDesk({static_cast<float>(at.x()), static_cast<float>(at.y())}));
    if (!entries) return;
    QMenu* menu = MakeDeskContextMenu(this, *entries, [this](int id) { m_menu.Choose(id); });
    menu->popup(m_widget->mapToGlobal(at));
}

void DeskPane::EditFrame(int number) {
    if (m_frameEditor == nullptr)
        m_frameEditor = new FrameEditor(m_widget, {m_document, m_desk, m_view, [this] { setFocus(); }});
    m_frameEditor->Open(number);
}

bool DeskPane::EditFrameAt(QPoint at) {
    const auto hit =
        m_gestures.FrameAt(m_view.ToDesk({static_cast<float>(at.x()), static_cast<float>(at.y())}));
    if (!hit || hit->corner) return false;
    EditFrame(hit->number);
    return true;
}

std::optional<DeskPoint> DeskPane::CursorOnDesk() const {
    const QPoint at = m_widget->mapFromGlobal(QCursor::pos());
    if (!m_widget->isVisible() || !m_widget->rect().contains(at)) return std::nullopt;
    return m_view.ToDesk({static_cast<float>(at.x()), static_cast<float>(at.y())});
}

std::optional<DeskRect> DeskPane::Sight() const {
    if (!m_widget->isVisible() || m_widget->size().isEmpty()) return std::nullopt;
    return m_view.Visible();
}

void DeskPane::Resized() {
    FollowPixelRatio();
    const QSize size = m_widget->size();
    m_view.SetSize(static_cast<float>(size.width()), static_cast<float>(size.height()));
    if (!size.isEmpty()) UpdateScrollBars();
}

void DeskPane::FollowPixelRatio() {
    const auto ratio = static_cast<float>(m_widget->devicePixelRatioF());
    if (ratio == m_fonts.PixelRatio()) return;
    m_fonts.SetPixelRatio(ratio);
    m_layoutDirty = true;
}

void DeskPane::ContextIsNew() {
    m_plainPen.ContextIsNew();
    m_batchedPen.ContextIsNew();
    m_canBatch = m_batchedPen.IsUsable();
}

void DeskPane::Paint() {
    m_desk.ValidateReferences();
    FollowPixelRatio();
    if (m_layoutDirty || m_view.Zoom() != m_lastZoom) LayoutAll();
    m_gestures.UpdateGrowArrows();
    DeskPen& pen = m_plain || !m_canBatch ? static_cast<DeskPen&>(m_plainPen) : m_batchedPen;
    DeskPainter(m_parts, pen)
        .Paint({m_litBox.empty() ? m_needs.highlightedBox() : m_litBox,
                m_showWallpaper ? m_wallpaper.get() : nullptr, m_tileWallpaper,
                m_needs.shownOutput ? m_needs.shownOutput() : nullptr, m_needs.marks});
    m_layoutDirty = false;
    m_lastZoom = m_view.Zoom();
}

}  // namespace tavrin

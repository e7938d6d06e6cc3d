// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/SliderPane.h"

#include <QApplication>
#include <QScrollBar>
#include <QWheelEvent>
#include <algorithm>
#include <utility>

namespace tavrin {

namespace {

constexpr int kLinesToAPage = 8;
constexpr int kLeastLine = 16;  // pixels

}  // namespace

SliderPane::SliderPane(QWidget* parent, CSliderDesk& desk, SliderNeeds needs)
    : QAbstractScrollArea(parent),
      m_desk(desk),
      m_needs(std::move(needs)),
      m_content(new QWidget(viewport())) {
    setFrameShape(QFrame::NoFrame);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    viewport()->setFocusPolicy(Qt::NoFocus);
    viewport()->setBackgroundRole(QPalette::Window);  // from which fields stand out
    m_content->setFocusPolicy(Qt::NoFocus);
    m_focusChanges = connect(qApp, &QApplication::focusChanged, this,
                             [this](QWidget*, QWidget* now) { FollowFocus(now); });
    m_desk.SetView(this);
    PlaceFrames();
}

// The frames go while what they were made with stands, and by their going the focus moves.
SliderPane::~SliderPane() {
    disconnect(m_focusChanges);
    m_desk.SetView(nullptr);
    for (const auto& [serial, window] : m_windows) window->Release();
    delete m_content;
}

int SliderPane::ColumnWidth() const {
    return CSliderFrame::WidthIn(DialogUnits(fontMetrics())) + verticalScrollBar()->sizeHint().width();
}

CSliderFrame* SliderPane::FrameOf(const COpButton& button) const {
    const auto found = m_windows.find(button.Serial());
    return found == m_windows.end() ? nullptr : found->second;
}

CSliderFrame* SliderPane::BringIntoView(const COpButton& button) {
    const int place = m_desk.PlaceOf(button);
    if (place < 0) return nullptr;
    const int top = m_tops[static_cast<size_t>(place)];
    const int bottom = m_tops[static_cast<size_t>(place) + 1];
    ScrollTo(top, bottom);
    return FrameOf(button);
}

// As little as brings a span of the content into view; its top, where it is too high for that.
void SliderPane::ScrollTo(int top, int bottom) {
    QScrollBar& bar = *verticalScrollBar();
    if (bottom > bar.value() + viewport()->height()) bar.setValue(bottom - viewport()->height());
    if (top < bar.value()) bar.setValue(top);
}

void SliderPane::PlaceFrames() {
    DropWindows();
    Measure();
    for (size_t place = 0; place < m_desk.Frames().size(); ++place) {
        const auto found = m_windows.find(m_desk.Frames()[place].button.Serial());
        if (found != m_windows.end()) found->second->Place(m_tops[place]);
    }
    UpdateScrollSizes();
    ShowFrames();
}

void SliderPane::RefreshFrame(COpButton& button) {
    CSliderFrame* frame = FrameOf(button);
    if (frame == nullptr) return;
    frame->Refresh();
    const int place = m_desk.PlaceOf(button);
    if (place >= 0) frame->SetPanelEnabled(!m_desk.Frames()[static_cast<size_t>(place)].isDisabled);
}

void SliderPane::Measure() {
    const DialogUnits units(fontMetrics());
    int y = 0;
    m_tops = {0};
    m_tops.reserve(m_desk.Frames().size() + 1);
    for (const SliderFrame& frame : m_desk.Frames()) {
        const COpButton* button = frame.button.Get();
        if (button != nullptr) y += CSliderFrame::HeightOf(*button, units);
        m_tops.push_back(y);
    }
}

// Of the frames that stand no more.
void SliderPane::DropWindows() {
    std::unordered_map<uint64_t, CSliderFrame*> kept;
    for (const SliderFrame& frame : m_desk.Frames()) {
        const auto found = m_windows.find(frame.button.Serial());
        if (found == m_windows.end()) continue;
        kept.insert(*found);
        m_windows.erase(found);
    }
    std::swap(kept, m_windows);
    for (const auto& [serial, window] : kept) Drop(*window);
}

// One of its own controls may have asked for that.
void SliderPane::Drop(CSliderFrame& frame) {
    frame.Release();
    frame.hide();
    frame.deleteLater();
}

// Frames that have a window stay where they are in the content; windows are made for those that come near.
void SliderPane::ShowFrames() {
    const int height = viewport()->height();
    const int top = verticalScrollBar()->value();
    m_content->setVisible(viewport()->width() > 0);  // else the Tab key would lead into a hidden column
    m_content->setGeometry(0, -top, viewport()->width(), std::max(m_tops.back(), 1));
    if (m_desk.Frames().empty() || viewport()->width() <= 0 || height <= 0) return;
    const size_t last = PlaceAt(top + 2 * height);
    for (size_t place = PlaceAt(top - height); place <= last; ++place) {
        const COpButton* button = m_desk.Frames()[place].button.Get();
        if (button == nullptr) continue;
        CSliderFrame* window = FrameOf(*button);
        if (window == nullptr) MakeWindow(place);
    }
}

size_t SliderPane::PlaceAt(int y) const {
    const auto after = std::upper_bound(m_tops.begin(), m_tops.end(), y);
    const auto place = static_cast<size_t>(std::max<std::ptrdiff_t>(after - m_tops.begin() - 1, 0));
    return std::min(place, m_desk.Frames().size() - 1);
}

CSliderFrame& SliderPane::MakeWindow(size_t place) {
    const SliderFrame& frame = m_desk.Frames()[place];
    auto* window = new CSliderFrame(m_content, *frame.button.Get(), m_desk, m_needs);
    QWidget* before = TabStopBefore(place);
    m_windows[frame.button.Serial()] = window;
    window->Place(m_tops[place]);
    window->SetPanelEnabled(!frame.isDisabled);
    window->FollowInTabChain(*before);
    return *window;
}

// The last one of the nearest frame above that has a window.
QWidget* SliderPane::TabStopBefore(size_t place) const {
    while (place > 0) {
        const auto found = m_windows.find(m_desk.Frames()[--place].button.Serial());
        if (found != m_windows.end()) return found->second->TabChain().back();
    }
    return m_content;
}

void SliderPane::FollowFocus(QWidget* widget) {
    if (widget == nullptr || !viewport()->isAncestorOf(widget)) return;
    const int top = widget->mapTo(m_content, QPoint(0, 0)).y();
    ScrollTo(top, top + widget->height());
}

// The mouse has not moved, so that no frame hears of it.
void SliderPane::ShowHelpUnder(QPoint global) {
    for (QWidget* under = QApplication::widgetAt(global); under != nullptr && under != m_content;
         under = under->parentWidget()) {
        if (auto* frame = dynamic_cast<CSliderFrame*>(under)) frame->ShowHelp();
    }
}

void SliderPane::UpdateScrollSizes() {
    QScrollBar& bar = *verticalScrollBar();
    const int page = viewport()->height();
    bar.setPageStep(page);
    bar.setSingleStep(std::max(kLeastLine, page / kLinesToAPage));
    bar.setRange(0, std::max(0, m_tops.back() - page));
}

void SliderPane::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    if (event->type() != QEvent::FontChange) return;
    for (const auto& [serial, window] : std::exchange(m_windows, {})) Drop(*window);
    PlaceFrames();
}

void SliderPane::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    UpdateScrollSizes();
    ShowFrames();
}

void SliderPane::scrollContentsBy(int, int) {
    ShowFrames();
    if (viewport()->underMouse()) ShowHelpUnder(QCursor::pos());
}

void SliderPane::wheelEvent(QWheelEvent* event) {
    event->accept();
    QScrollBar& bar = *verticalScrollBar();
    int notches = m_wheel.Turn(*event);
    for (; notches > 0; --notches) bar.triggerAction(QAbstractSlider::SliderSingleStepSub);
    for (; notches < 0; ++notches) bar.triggerAction(QAbstractSlider::SliderSingleStepAdd);
}

}  // namespace tavrin

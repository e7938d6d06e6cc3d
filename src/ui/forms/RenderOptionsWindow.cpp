// SPDX-License-Identifier: Apache-2.0
#include "ui/forms/RenderOptionsWindow.h"

#include <QAbstractScrollArea>
#include <QScreen>
#include <QScrollBar>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <algorithm>
#include <utility>

#include "ui/forms/FormFrameControl.h"
#include "ui/windows/WheelNotches.h"

namespace tavrin {

namespace {

constexpr int kLine = 10;  // pixels that a line scrolls

// Scrolls the form by moving it.
class FormArea : public QAbstractScrollArea {
  public:
    explicit FormArea(QWidget* parent) : QAbstractScrollArea(parent) {
        setFrameShape(QFrame::NoFrame);
        setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
        setFocusPolicy(Qt::NoFocus);
        viewport()->setBackgroundRole(QPalette::Window);
    }
    void SetForm(QWidget& form) {
        m_form = &form;
        UpdateBars();
    }

  protected:
    void resizeEvent(QResizeEvent* event) override {
        QAbstractScrollArea::resizeEvent(event);
        UpdateBars();
    }
    void scrollContentsBy(int, int) override {
        m_form->move(-horizontalScrollBar()->value(), -verticalScrollBar()->value());
    }
    // The Tab key never leads out of sight.
    bool focusNextPrevChild(bool next) override {
        if (!QAbstractScrollArea::focusNextPrevChild(next)) return false;
        const QWidget* focused = window()->focusWidget();
        if (focused == nullptr || !m_form->isAncestorOf(focused)) return true;
        const QRect place(focused->mapTo(m_form, QPoint(0, 0)), focused->size());
        BringIntoView(*horizontalScrollBar(), place.left(), place.right(), viewport()->width());
        BringIntoView(*verticalScrollBar(), place.top(), place.bottom(), viewport()->height());
        return true;
    }
    void wheelEvent(QWheelEvent* event) override {
        event->accept();
        verticalScrollBar()->setValue(verticalScrollBar()->value() - m_wheel.Turn(*event) * kLine);
    }

  private:
    // As little as shows the whole span, or its beginning where there is no room for that.
    static void BringIntoView(QScrollBar& bar, int first, int last, int page) {
        bar.setValue(std::min(std::max(bar.value(), last + 1 - page), first));
    }
    void UpdateBars() {
        if (m_form == nullptr) return;
        const auto update = [](QScrollBar& bar, int content, int page) {
            bar.setSingleStep(kLine);
            bar.setPageStep(page);
            bar.setRange(0, std::max(0, content - page));
        };
        update(*horizontalScrollBar(), m_form->width(), viewport()->width());
        update(*verticalScrollBar(), m_form->height(), viewport()->height());
    }

    QWidget* m_form = nullptr;
    WheelNotches m_wheel;
};

// What the form asks for, or room for all of it with the bars; never more than the screen has.
QSize SizeOf(const CRenderOptionsEditor& form, const QWidget& content, const QAbstractScrollArea& area) {
    const int across = content.width() + area.verticalScrollBar()->sizeHint().width();
    const int down = content.height() + area.horizontalScrollBar()->sizeHint().height();
    const QSize wished(form.winWidth > 0 ? form.winWidth : across,
                       form.winHeight > 0 ? form.winHeight : down);
    return wished.boundedTo(area.screen()->availableSize());
}

}  // namespace

RenderOptionsWindow::RenderOptionsWindow(QWidget* frame, CRenderOptionsEditor& form, FormNeeds needs)
    : ToolWindow("Render Options [F2]", frame), m_needs(std::move(needs)) {
    auto* area = new FormArea(this);
    m_area = area;
    auto* content = new FormRootControl(area->viewport(), form, m_needs);
    area->SetForm(*content);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(area);
    resize(SizeOf(form, *content, *area));
}

// Controls look at what they were made with until they are gone.
RenderOptionsWindow::~RenderOptionsWindow() { delete m_area; }

}  // namespace tavrin

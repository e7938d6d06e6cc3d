// SPDX-License-Identifier: Apache-2.0
// What tests of the slider column stand on: a document with a slider desk, the column in a window.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QLineEdit>
#include <QStyleOptionSlider>
#include <QTest>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/ChangeAuditor.h"
#include "support/TestHost.h"
#include "ui/base/Text.h"
#include "ui/sliders/NumberField.h"
#include "ui/sliders/SliderPane.h"
#include "ui/sliders/ValueSlider.h"
#include "ui/support/Windows.h"
#include "ui/windows/OneLineField.h"

namespace tavrin::test {

// Those of a class of ours, whatever they are children of.
template <typename Child>
std::vector<Child*> ChildrenOf(const QWidget& parent) {
    std::vector<Child*> children;
    for (QWidget* widget : parent.findChildren<QWidget*>()) {
        if (auto* child = dynamic_cast<Child*>(widget)) children.push_back(child);
    }
    return children;
}

class SliderTest : public DocumentTest {
  protected:
    SliderTest() {
        pane = std::make_unique<SliderPane>(
            nullptr, sliders, SliderNeeds{document, host.GetSite(), [this](const std::string& text, int) {
                                              status.push_back(text);
                                          }});
        pane->resize(pane->ColumnWidth(), kHeight);
        outside.setGeometry(900, 0, 200, 40);
    }

    // A selected box with that definition, whose frames are shown in the active window. The document counts
    // as unmodified.
    COpBox& Show(const std::string& definition, const std::string& name = "a") {
        COpBox& box = Add(desk, MakeBox(name, definition));
        Select(box);
        document.SetModified(false);
        ShowActive(*pane);
        changes.clear();
        return box;
    }
    void Select(COpBox& box, bool selected = true) {
        box.selected = selected ? 1 : 0;
        document.edits.SelectionChanged();
    }

    CSliderFrame& FrameOf(const COpButton& button) {
        CSliderFrame* frame = pane->BringIntoView(button);
        if (frame == nullptr) throw std::logic_error("no frame");
        return *frame;
    }
    // A control of a button's frame by its name, which belongs to the panel that is shown.
    template <typename Control>
    Control& Find(const COpButton& button, const QString& name) {
        for (Control* control : ChildrenOf<Control>(FrameOf(button))) {
            if (control->accessibleName() == name && control->isVisible()) return *control;
        }
        throw std::logic_error("no control " + Bytes(name));
    }
    NumberField& Field(const COpButton& button, const QString& name = "Value") {
        return Find<NumberField>(button, name);
    }
    ValueSlider& Slider(const COpButton& button, const QString& name = "Value") {
        return Find<ValueSlider>(button, name);
    }

    // In place of what the field shows, key by key, with the focus in it.
    void TypeOver(QLineEdit& field, const QString& text) {
        GiveFocus(field);
        field.selectAll();
        if (text.isEmpty()) QTest::keyClick(&field, Qt::Key_Delete);
        QTest::keyClicks(&field, text);
    }
    void Paste(QLineEdit& field, const QString& text) {
        QGuiApplication::clipboard()->setText(text);
        GiveFocus(field);
        field.selectAll();
        QTest::keySequence(&field, QKeySequence::Paste);
    }
    // The focus goes to another window of the program.
    void Leave() {
        ShowActive(outside);
        outside.setFocus();
        ASSERT_TRUE(WaitUntil([this] { return outside.hasFocus(); }));
    }

    // Where the middle of the thumb is at a position.
    static QPoint ThumbAt(ValueSlider& slider, int position) {
        QStyleOptionSlider option;
        option.initFrom(&slider);
        option.orientation = Qt::Horizontal;
        option.minimum = slider.minimum();
        option.maximum = slider.maximum();
        option.sliderPosition = option.sliderValue = position;
        return slider.style()
            ->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, &slider)
            .center();
    }
    // By the thumb, over the positions in between; `hold` leaves the button down.
    static void Drag(ValueSlider& slider, int position, bool hold = false) {
        const QPoint from = ThumbAt(slider, slider.sliderPosition());
        const QPoint to = ThumbAt(slider, position);
        QTest::mousePress(slider.window()->windowHandle(), Qt::LeftButton, {}, InWindow(slider, from));
        QTest::mouseMove(slider.window()->windowHandle(), InWindow(slider, (from + to) / 2));
        DragOn(slider, position);
        if (!hold) Release(slider, position);
    }
    static void DragOn(ValueSlider& slider, int position) {
        QTest::mouseMove(slider.window()->windowHandle(), InWindow(slider, ThumbAt(slider, position)));
    }
    static void Release(ValueSlider& slider, int position) {
        QTest::mouseRelease(slider.window()->windowHandle(), Qt::LeftButton, {},
                            InWindow(slider, ThumbAt(slider, position)));
    }
    // A click as the window system tells it, which goes to whatever takes it.
    static void Click(QWidget& widget, QPoint at, Qt::MouseButton button = Qt::LeftButton) {
        QTest::mouseClick(widget.window()->windowHandle(), button, {}, InWindow(widget, at));
    }
    static QPoint InWindow(const QWidget& widget, QPoint at) { return widget.mapTo(widget.window(), at); }

    static constexpr int kHeight = 500;
    RecordingView view{document};
    SeenDesk desk{document, host, view};
    CSliderDesk sliders{document};
    std::vector<std::string> status;
    std::vector<std::string> changes;
    Edits::Subscription listener = document.edits.Observe([this](const Change& change) {
        if (!change.selection) changes.push_back(TextOf(change));
    });
    std::unique_ptr<SliderPane> pane;
    QLineEdit outside;
};

}  // namespace tavrin::test

// SPDX-License-Identifier: Apache-2.0
// A user's hands on the form's window, for tests.
#pragma once

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QPushButton>
#include <QTest>
#include <stdexcept>
#include <vector>

#include "ui/base/Text.h"
#include "ui/forms/FormEdits.h"
#include "ui/support/Windows.h"

namespace tavrin::test {

// A base of fixtures, which say where the window is.
class FormHands {
  protected:
    virtual ~FormHands() = default;
    virtual QWidget& FormWindow() = 0;

    // All of a class, in the order of the form.
    template <typename Control>
    std::vector<Control*> All() {
        std::vector<Control*> all;
        for (QWidget* widget : FormWindow().findChildren<QWidget*>()) {
            if (auto* control = dynamic_cast<Control*>(widget)) all.push_back(control);
        }
        return all;
    }
    template <typename Control>
    Control& The(size_t index = 0) {
        return *All<Control>().at(index);
    }
    // By its name for screen readers, which is the caption or else the option.
    template <typename Control>
    Control& Named(const QString& name) {
        for (Control* control : All<Control>()) {
            if (control->accessibleName() == name) return *control;
        }
        throw std::logic_error("no control " + Bytes(name));
    }
    QPushButton& Button(const QString& text) {
        for (QPushButton* button : All<QPushButton>()) {
            if (button->text() == text && button->isVisible()) return *button;
        }
        throw std::logic_error("no button " + Bytes(text));
    }

    void Click(const QString& button) { QTest::mouseClick(&Button(button), Qt::LeftButton); }
    static void TypeOver(QLineEdit& edit, const QString& text) {
        GiveFocus(edit);
        edit.selectAll();
        QTest::keyClicks(&edit, text);
    }
    // The line of that number in the list that opens, by keys.
    static void Choose(FormList& list, int index) {
        GiveFocus(list);
        list.showPopup();
        ASSERT_TRUE(WaitUntil([&] { return list.view()->isVisible(); }));
        list.view()->setCurrentIndex(list.model()->index(index, 0));
        QTest::keyClick(list.view(), Qt::Key_Return);
        ASSERT_TRUE(WaitUntil([&] { return !list.view()->isVisible(); }));
    }
};

}  // namespace tavrin::test

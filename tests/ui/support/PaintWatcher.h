// SPDX-License-Identifier: Apache-2.0
// What the status box has told, kept for a test that looks later: such texts go by themselves.
#pragma once

#include <QApplication>
#include <QEvent>
#include <QLabel>
#include <functional>
#include <set>
#include <string>

#include "ui/base/Text.h"

namespace tavrin::test {

// What the status box says, and which cursor is shown, each time that it is painted.
class PaintWatcher : public QObject {
  public:
    explicit PaintWatcher(QWidget& box) : m_activity(box.findChild<QLabel*>("activity")) {
        m_activity->installEventFilter(this);
    }
    bool eventFilter(QObject* object, QEvent* event) override {
        if (object != m_activity || event->type() != QEvent::Paint) return false;
        texts.insert(Bytes(m_activity->text()));
        const QCursor* cursor = QGuiApplication::overrideCursor();
        if (cursor != nullptr && cursor->shape() == Qt::WaitCursor) waiting.insert(Bytes(m_activity->text()));
        if (onPaint) onPaint();
        return false;
    }
    // A text that begins so was seen once. Wait for that: it stays true.
    bool HasTold(const std::string& beginning) const {
        const auto text = texts.lower_bound(beginning);
        return text != texts.end() && text->starts_with(beginning);
    }
    std::set<std::string> texts;
    std::set<std::string> waiting;  // those of them under the wait cursor
    std::function<void()> onPaint;

  private:
    QLabel* m_activity;
};

}  // namespace tavrin::test

// SPDX-License-Identifier: Apache-2.0
#include "ui/support/Windows.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QEvent>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPixmap>
#include <QPointer>
#include <QScreen>
#include <QTest>
#include <QTimer>
#include <QWindow>
#include <deque>
#include <memory>
#include <stdexcept>

#include "support/Patience.h"
#include "ui/base/Text.h"

namespace tavrin::test {

namespace {

constexpr int kPatienceInMs = std::chrono::milliseconds(kPatience).count();
constexpr int kAskAgainInMs = 500;  // for the focus

std::deque<std::function<void(QDialog&)>> g_answers;
QStringList g_boxes;

// Answers dialogs as they come up.
class DialogWatcher : public QObject {
  public:
    bool eventFilter(QObject* object, QEvent* event) override {
        auto* dialog = qobject_cast<QDialog*>(object);
        if (dialog == nullptr || event->type() != QEvent::Show || !dialog->isModal()) return false;
        // Its own loop is to run before it is answered.
        QTimer::singleShot(0, this, [guarded = QPointer<QDialog>(dialog)] {
            if (guarded == nullptr || !guarded->isVisible()) return;
            if (g_answers.empty()) {
                ADD_FAILURE() << "nobody answers the dialog \"" << Bytes(guarded->windowTitle())
                              << "\": " << Bytes(guarded->property("text").toString());
                guarded->reject();
                return;
            }
            const auto answer = g_answers.front();
            g_answers.pop_front();
            answer(*guarded);
        });
        return false;
    }
};

// Warnings of the toolkit are mistakes of ours.
void OnToolkitMessage(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtDebugMsg || type == QtInfoMsg) return;
    ADD_FAILURE() << "the toolkit warns: " << Bytes(message);
}

// Asks the window manager for a window to be the active one, again and again until it is.
class Activation {
  public:
    explicit Activation(QWidget& window) : m_window(window) {}

    // To be called until it is true; that is often, and a window manager that is slow would have ever more to
    // answer if it were asked each time.
    bool IsDone() {
        if (m_window.isActiveWindow()) {
            m_aside.reset();
            return true;
        }
        if (m_asked.isValid() && m_asked.elapsed() < kAskAgainInMs) return false;
        m_asked.start();
        // The toolkit may take late word of an earlier loss of the focus for a new one. The window manager,
        // for which the window has been active all along, tells nothing more of it until another one was.
        if (m_aside == nullptr && m_times++ > 0) {
            m_aside = std::make_unique<QWidget>();
            m_aside->show();
            m_aside->activateWindow();
        } else {
            m_aside.reset();
            m_window.activateWindow();
        }
        return false;
    }

  private:
    QWidget& m_window;
    QElapsedTimer m_asked;
    int m_times = 0;
    std::unique_ptr<QWidget> m_aside;
};

// Under load the window manager may take the focus from a window and give it back so late that the toolkit
// takes the program for left; and sometimes it then never hears of the return. Nobody works beside the tests,
// so who needs the focus asks for it again, for the window that had it last.
class FocusKeeper : public QObject {
  public:
    FocusKeeper() {
        connect(qApp, &QGuiApplication::focusWindowChanged, this, [this](QWindow* window) {
            if (window != nullptr) m_last = QWidget::find(window->winId());
        });
    }
    void Forget() { m_last.clear(); }

    // Waits for the condition, which wants a window of the program to have the focus.
    bool WaitFor(const std::function<bool()>& condition) const {
        std::unique_ptr<Activation> activation;
        return WaitUntil([&] {
            const bool hasFocus = QGuiApplication::focusWindow() != nullptr;
            if (activation == nullptr && hasFocus) return condition();
            if (m_last == nullptr || !m_last->isVisible() || m_last->isMinimized()) return condition();
            if (activation == nullptr) activation = std::make_unique<Activation>(*m_last);
            if (activation->IsDone()) activation.reset();
            return activation == nullptr && condition();
        });
    }

  private:
    QPointer<QWidget> m_last;
};
FocusKeeper* g_focus = nullptr;

// Each test begins and ends without windows, and with the hand off the mouse: the events of the tests after
// it would say that the button is down.
// What a test has left pressed nobody else would let go.
void LetGoOfTheMouse() {
    QTestPrivate::qtestMouseButtons = Qt::NoButton;
    if (QApplication::mouseButtons() == Qt::NoButton) return;
    QWindow nobody;
    nobody.resize(10, 10);
    QTest::mouseRelease(&nobody, Qt::LeftButton, Qt::NoModifier, {5, 5});
}

class NothingIsLeft : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override {
        g_answers.clear();
        g_boxes.clear();
        g_focus->Forget();
        LetGoOfTheMouse();
    }
    void OnTestEnd(const testing::TestInfo&) override {
        EXPECT_TRUE(g_answers.empty()) << g_answers.size() << " dialogs that were expected did not come";
        g_answers.clear();
        g_focus->Forget();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        for (const QWidget* widget : QApplication::topLevelWidgets()) {
            if (widget->inherits("QDesktopWidget") || widget->inherits("QTipLabel")) continue;
            ADD_FAILURE() << "a window was left behind: " << widget->metaObject()->className() << " \""
                          << Bytes(widget->windowTitle()) << "\"";
        }
    }
};

}  // namespace

void WatchToolkit() {
    qInstallMessageHandler(OnToolkitMessage);
    static DialogWatcher watcher;
    qApp->installEventFilter(&watcher);
    static FocusKeeper focus;
    g_focus = &focus;
    testing::UnitTest::GetInstance()->listeners().Append(new NothingIsLeft);
}

bool WaitUntil(const std::function<bool()>& condition) {
    QElapsedTimer clock;
    clock.start();
    QTimer wakeUp;  // a condition may come true without any event
    wakeUp.start(10);
    while (!condition()) {
        if (clock.elapsed() > kPatienceInMs) return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

bool WaitUntilSeen(QWidget& window) { return QTest::qWaitForWindowExposed(&window, kPatienceInMs); }

void HandleEvents() {
    for (int round = 0; round < 3; ++round) QCoreApplication::processEvents();
}

void ShowActive(QWidget& window) {
    window.show();
    window.raise();
    window.activateWindow();
    ASSERT_TRUE(WaitUntilSeen(window));
    Activation activation(window);
    ASSERT_TRUE(WaitUntil([&] { return activation.IsDone(); }));
}

void GiveFocus(QWidget& widget) {
    Activation activation(*widget.window());
    ASSERT_TRUE(WaitUntil([&] {
        if (!activation.IsDone()) return false;
        widget.setFocus();
        return widget.hasFocus();
    }));
}

bool HasFocus(const QWidget& widget) {
    return g_focus->WaitFor([&] { return widget.hasFocus(); });
}

bool HasFocus() {
    return g_focus->WaitFor([] { return QGuiApplication::focusWindow() != nullptr; });
}

QWidget& FocusWidget() {
    if (!g_focus->WaitFor([] { return QApplication::focusWidget() != nullptr; }))
        throw std::logic_error("nothing has the focus");
    return *QApplication::focusWidget();
}

bool HoverUntil(QWidget& widget, QPoint at, const std::function<bool()>& condition) {
    QWindow* window = widget.window()->windowHandle();
    return WaitUntil([&] {
        if (condition()) return true;
        QTest::mouseMove(window, QPoint(widget.window()->width() - 1, widget.window()->height() - 1));
        QTest::mouseMove(window, widget.mapTo(widget.window(), at));
        return condition();
    });
}

QImage SeenOnScreen(const QWidget& widget) {
    const QPoint at = widget.mapToGlobal(QPoint(0, 0));
    return widget.screen()->grabWindow(0, at.x(), at.y(), widget.width(), widget.height()).toImage();
}

void WhenDialogComes(std::function<void(QDialog&)> answer) { g_answers.push_back(std::move(answer)); }

void PressWhenBoxComes(const QString& button) {
    WhenDialogComes([button](QDialog& dialog) {
        const auto* box = qobject_cast<QMessageBox*>(&dialog);
        if (box == nullptr) {
            ADD_FAILURE() << "not a message box: " << Bytes(dialog.windowTitle());
            dialog.reject();
            return;
        }
        g_boxes << box->windowTitle() + ": " + box->text();
        for (QAbstractButton* candidate : box->buttons()) {
            if (candidate->text().remove('&') == button) {
                candidate->click();
                return;
            }
        }
        ADD_FAILURE() << "the box has no button " << Bytes(button);
        dialog.reject();
    });
}

const QStringList& BoxesShown() { return g_boxes; }

void ChooseFileWhenDialogComes(const std::string& path) {
    WhenDialogComes([path](QDialog& dialog) {
        auto* files = qobject_cast<QFileDialog*>(&dialog);
        auto* name = dialog.findChild<QLineEdit*>("fileNameEdit");
        if (files == nullptr || name == nullptr) {
            ADD_FAILURE() << "not a file dialog: " << Bytes(dialog.windowTitle());
            dialog.reject();
            return;
        }
        // A row that is selected counts, and not the name.
        for (auto* view : dialog.findChildren<QAbstractItemView*>()) view->clearSelection();
        name->setFocus();
        name->setText(Shown(path));
        QTest::keyClick(name, Qt::Key_Return);
        if (dialog.isVisible()) {
            ADD_FAILURE() << "the file dialog does not take " << path;
            dialog.reject();
        }
    });
}

void CancelWhenDialogComes() {
    WhenDialogComes([](QDialog& dialog) { dialog.reject(); });
}

}  // namespace tavrin::test

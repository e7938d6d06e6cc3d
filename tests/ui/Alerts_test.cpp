// SPDX-License-Identifier: Apache-2.0
// When alerts come up, what ends the program at its start, and how long the splash stays.
#include <QApplication>
#include <QElapsedTimer>
#include <QMenu>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <QWindow>
#include <filesystem>
#include <optional>

#include "ui/base/Text.h"
#include "ui/frame/Splash.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::BoxesShown;
using test::FrameTest;
using test::PressWhenBoxComes;
using test::WaitUntil;
using test::WhenDialogComes;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class AlertsTest : public FrameTest {
  protected:
    Report& GetReport() { return App().GetSite().report; }
    void Alert(const char* text) { GetReport().Alert("%s", text); }
    // From the event loop, as a handler of what the user does.
    void InAHandler(const std::function<void()>& work) { QTimer::singleShot(0, &Frame(), work); }
    std::string Boxes() { return Bytes(BoxesShown().join('|')); }
    void WaitForBoxes(const std::string& boxes) {
        EXPECT_TRUE(WaitUntil([&] { return Boxes() == boxes; })) << Boxes();
        Settle();
        EXPECT_EQ(Boxes(), boxes);
    }
    int LogLines(const std::string& line) { return static_cast<int>(Shown(Log()).count(Shown(line))); }
};

TEST_F(AlertsTest, OfTwoAlertsInOneHandlerTheSecondIsShownAlone) {
    Start();
    PressWhenBoxComes("OK");
    InAHandler([&] {
        Alert("first");
        Alert("second");
    });
    WaitForBoxes("Alert: second");
    EXPECT_THAT(Log(), HasSubstr("ALERT: second"));
    EXPECT_THAT(Log(), Not(HasSubstr("first")));
}

TEST_F(AlertsTest, CodeThatAlertsGoesOnAtOnce) {
    Start();
    Alert("later");
    EXPECT_EQ(Boxes(), "");
    PressWhenBoxComes("OK");
    WaitForBoxes("Alert: later");
}

TEST_F(AlertsTest, TheBoxHasTheStopIconBelongsToTheFrameAndIsLoggedOnceItIsGone) {
    Start();
    bool answered = false;
    WhenDialogComes([&](QDialog& dialog) {
        const auto* box = qobject_cast<QMessageBox*>(&dialog);
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->icon(), QMessageBox::Critical);
        EXPECT_EQ(box->parentWidget(), &Frame());
        EXPECT_EQ(Bytes(box->windowTitle()), "Alert");
        EXPECT_THAT(Log(), Not(HasSubstr("ALERT")));
        answered = true;
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    Alert("<b>look</b> %s");
    EXPECT_TRUE(WaitUntil([&] { return answered && LogLines("ALERT: <b>look</b> %s") == 1; }));
}

TEST_F(AlertsTest, AnErrorInAFileOpensItInTheEditorBesideTheMessage) {
    Start();
    const std::string path = WriteDocument("bad");
    const std::string whole = test::ReadFile(path);
    directory.Write("bad.tvn", whole.substr(0, whole.size() / 2));
    bool answered = false;
    WhenDialogComes([&](QDialog& dialog) {
        EXPECT_THAT(Bytes(qobject_cast<QMessageBox*>(&dialog)->text()), HasSubstr(path + " near line "));
        EXPECT_TRUE(WaitUntil([&] { return !EditedFiles().empty(); }));
        answered = true;
        dialog.accept();
    });
    InAHandler([&] { Frame().OpenDocumentFile(path); });
    ASSERT_TRUE(WaitUntil([&] { return answered; }));
    // The next one, which names none, opens none.
    PressWhenBoxComes("OK");
    Alert("no file");
    WaitForBoxes("Alert: no file");
    EXPECT_THAT(EditedFiles(), ElementsAre(path));
}

TEST_F(AlertsTest, AnAlertRaisedWhileABoxIsOpenComesAfterIt) {
    Start();
    // However the box is left, and whether the alert comes long before that or just then.
    for (const bool justThen : {false, true}) {
        WhenDialogComes([&, justThen](QDialog& dialog) {
            Alert("during the box");
            if (!justThen) Settle();
            dialog.accept();
        });
        PressWhenBoxComes("OK");
        const int before = LogLines("ALERT: ");
        Alert("the box");
        // At once, not when something else happens to bring the next idle pass.
        EXPECT_TRUE(WaitUntil([&] { return LogLines("ALERT: ") > before; }));
        EXPECT_EQ(LogLines("ALERT: "), before + 2) << Log();
    }
    EXPECT_EQ(Boxes(), "Alert: during the box|Alert: during the box");
}

TEST_F(AlertsTest, AnAlertComesUpOverADialogThatIsOpen) {
    Start();
    bool cameOver = false;
    WhenDialogComes([&](QDialog& about) {
        PressWhenBoxComes("OK");
        Alert("over the dialog");
        cameOver = WaitUntil([&] { return Boxes() == "Alert: over the dialog"; }) && about.isVisible();
        about.reject();
    });
    Do(CommandId::kAbout);
    EXPECT_TRUE(cameOver);
    Settle();
    EXPECT_EQ(LogLines("ALERT: over the dialog"), 1);
}

TEST_F(AlertsTest, AnAlertComesUpWhileAMenuIsOpen) {
    Start();
    QMenu* menu = Menu("File");
    ASSERT_NE(menu, nullptr);
    menu->popup(Frame().mapToGlobal(QPoint(20, 20)));
    ASSERT_TRUE(WaitUntil([&] { return menu->isVisible(); }));
    bool answered = false;
    WhenDialogComes([&](QDialog& dialog) {
        EXPECT_FALSE(menu->isVisible());  // it would keep the keys and the pointer to itself
        answered = true;
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    Alert("beside the menu");
    EXPECT_TRUE(WaitUntil([&] { return answered && LogLines("ALERT: beside the menu") == 1; }));
    menu->close();
}

TEST_F(AlertsTest, AnAlertOfAChildsOutputOrATimerComesWithoutTheUserDoingAnything) {
    Start();
    PressWhenBoxComes("OK");
    QTimer::singleShot(0, [&] { Alert("by itself"); });
    WaitForBoxes("Alert: by itself");
}

class SplashTest : public AlertsTest {
  protected:
    static Splash* FindSplash() {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (auto* splash = dynamic_cast<Splash*>(window)) return splash;
        }
        return nullptr;
    }
    void StartWithSplash() {
        Make(true);
        Frame().show();
    }
};

TEST_F(SplashTest, StaysForItsTimeAndGoesWithoutTheUserDoingAnything) {
    QElapsedTimer clock;
    clock.start();
    StartWithSplash();
    ASSERT_NE(FindSplash(), nullptr);
    EXPECT_TRUE(WaitUntil([] { return FindSplash() == nullptr || FindSplash()->isVisible(); }));
    ASSERT_NE(FindSplash(), nullptr);
    EXPECT_TRUE(Frame().frameGeometry().contains(FindSplash()->frameGeometry().center()));
    ASSERT_TRUE(WaitUntil([] { return FindSplash() == nullptr; }));
    EXPECT_GT(clock.elapsed(), 2500);
    EXPECT_TRUE(Frame().isVisible());
}

// Tells whether the frame's window was on its way to the screen when the splash was shown.
class SplashWatcher : public QObject {
  public:
    explicit SplashWatcher(const QWidget& frame) : m_frame(frame) { qApp->installEventFilter(this); }
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::Show && dynamic_cast<Splash*>(object) != nullptr)
            afterFrame = m_frame.windowHandle() != nullptr && m_frame.windowHandle()->isVisible();
        return false;
    }
    std::optional<bool> afterFrame;

  private:
    const QWidget& m_frame;
};

// A window manager that learns of the frame later has it above the splash.
TEST_F(SplashTest, IsShownAfterTheFrame) {
    Make(true);
    const SplashWatcher watcher(Frame());
    Frame().show();
    EXPECT_EQ(watcher.afterFrame, true);
}

TEST_F(SplashTest, GoesBeforeTheBoxOfAnAlertThatWaits) {
    StartWithSplash();
    qint64 timeLeft = 0;
    bool wasGone = false;
    WhenDialogComes([&](QDialog& dialog) {
        wasGone = FindSplash() == nullptr;
        dialog.accept();
    });
    timeLeft = FindSplash()->TimeLeft();
    Alert("at the start");
    EXPECT_TRUE(WaitUntil([&] { return LogLines("ALERT: at the start") == 1; }));
    EXPECT_TRUE(wasGone);
    EXPECT_GT(timeLeft, 0);
}

TEST_F(SplashTest, AnAlertFromBeforeTheStartComesOverTheFrame) {
    Make(true);
    bool frameWasThere = false;
    WhenDialogComes([&](QDialog& dialog) {
        frameWasThere = Frame().isVisible() && dialog.parentWidget() == &Frame();
        dialog.accept();
    });
    Alert("in a file of the site");
    Frame().show();
    EXPECT_TRUE(WaitUntil([&] { return LogLines("ALERT: in a file of the site") == 1; }));
    EXPECT_TRUE(frameWasThere);
    EXPECT_EQ(FindSplash(), nullptr);
}

class FatalStartTest : public SplashTest {
  protected:
    // The boxes before the frame was closed.
    std::string BoxesUntilTheEnd(int count = 1) {
        for (int box = 0; box < count; ++box) PressWhenBoxComes("OK");
        Make();
        Frame().show();
        EXPECT_TRUE(WaitUntil([&] { return Frame().IsClosed(); })) << Boxes();
        Settle();
        EXPECT_FALSE(Frame().isVisible());
        EXPECT_FALSE(fs::exists(WorkDir()));
        return Boxes();
    }
    std::string LinkTo(const std::string& name) {
        fs::create_directory_symlink(directory / "tavrin", directory / name);
        return directory / name;
    }
};

TEST_F(FatalStartTest, ABlankInTheInstallationsPathEndsTheProgram) {
    const std::string path = LinkTo("my site");
    environment.Set("TAVRN_DIR", path);
    EXPECT_EQ(BoxesUntilTheEnd(), "Fatal Error: Tavrin directory path \"" + path + "\" includes whitespace");
}

TEST_F(FatalStartTest, ABlankInTheTemporaryRootEndsTheProgram) {
    environment.Set("TAVRN_TMPDIR", directory / "my tmp");
    EXPECT_EQ(BoxesUntilTheEnd(),
              "Fatal Error: Temporary directory path \"" + directory / "my tmp" + "\" includes whitespace");
}

TEST_F(FatalStartTest, AMissingInstallationEndsTheProgram) {
    environment.Set("TAVRN_DIR", directory / "nowhere");
    EXPECT_EQ(BoxesUntilTheEnd(),
              "Fatal Error: Tavrin directory \"" + directory / "nowhere" + "\" does not exist");
}

TEST_F(FatalStartTest, ALibraryWithoutASeparatorIsAlertedAndEndsTheProgram) {
    environment.Set("TAVRN_LIB", "tiny");
    EXPECT_EQ(BoxesUntilTheEnd(), "Alert: environment variable TAVRN_LIB not defined");
    EXPECT_EQ(LogLines("ALERT: environment variable TAVRN_LIB not defined"), 1);
    EXPECT_THAT(Log(), Not(HasSubstr("invalid TAVRN_LIB")));  // said before there was a log
}

TEST_F(FatalStartTest, AnAlertThatWaitsIsShownBeforeTheProgramEnds) {
    environment.Set("TAVRN_TMPDIR", directory / "my tmp");
    PressWhenBoxComes("OK");
    bool wasOpen = false;
    WhenDialogComes([&](QDialog& dialog) {
        EXPECT_EQ(Bytes(dialog.windowTitle()), "Alert");
        wasOpen = Frame().isVisible() && !Frame().IsClosed();
        dialog.accept();
    });
    Make();
    Frame().show();
    Alert("waits");
    EXPECT_TRUE(WaitUntil([&] { return Frame().IsClosed(); }));
    EXPECT_THAT(Boxes(), HasSubstr("Fatal Error: Temporary directory path"));
    EXPECT_TRUE(wasOpen);
    EXPECT_EQ(LogLines("ALERT: waits"), 1);
}

TEST_F(FatalStartTest, TheSplashIsGoneBeforeTheFatalBox) {
    environment.Set("TAVRN_DIR", directory / "nowhere");
    bool wasGone = false;
    WhenDialogComes([&](QDialog& dialog) {
        wasGone = FindSplash() == nullptr;
        dialog.accept();
    });
    StartWithSplash();
    EXPECT_NE(FindSplash(), nullptr);
    EXPECT_TRUE(WaitUntil([&] { return Frame().IsClosed(); }));
    EXPECT_TRUE(wasGone);
}

TEST_F(FatalStartTest, ATabInThePathsPasses) {
    environment.Set("TAVRN_DIR", LinkTo("my\tsite"));
    environment.Set("TAVRN_TMPDIR", directory / "my\ttmp");
    Start();
    EXPECT_FALSE(Frame().IsClosed());
    EXPECT_TRUE(fs::exists(WorkDir()));
    EXPECT_EQ(Boxes(), "");
}

}  // namespace
}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
// The picture window as a process of its own: from the desk through the library's script to the screen.
#include <signal.h>

#include <QProcess>
#include <QScreen>
#include <filesystem>

#include "ui/base/Text.h"
#include "ui/support/RunningProgram.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::Ask;
using test::WaitUntil;
using testing::HasSubstr;
using Id = CommandId;

constexpr QSize kPicture(200, 150);

// The program's own library with its renderer.
class PictureWindowProcess : public test::FrameTest {
  protected:
    PictureWindowProcess() {
        environment.Set("TAVRN_DIR", test::SourcePath("installation"));
        environment.Set("TAVRN_LIB", test::SourcePath("installation/mray"));
        environment.Set("TAVRN_VIEW", test::BuildPath("bin/tavrin-view"));
        fs::create_directory(directory / "runtime");
        environment.Set("XDG_RUNTIME_DIR", directory / "runtime");
        environment.Set("XDG_CONFIG_HOME", directory / "config");
        environment.Unset("MRAY_VIEWER");
    }
    ~PictureWindowProcess() override {
        End();
        for (const QString& window : Windows()) {
            const QString id = Shown(Ask("xdotool", {"getwindowpid", window}).text).trimmed();
            if (id.toInt() > 1) ::kill(id.toInt(), SIGKILL);
        }
        EXPECT_TRUE(WaitUntil([] { return Windows().isEmpty(); }));
    }

    void OpenExample() {
        Start();
        fs::copy_file(test::SourcePath("examples/brick.tvn"), directory / "brick.tvn");
        ASSERT_TRUE(Frame().OpenDocumentFile(directory / "brick.tvn"));
        Document().m_renderOptions["MRAY_SIZE"] =
            std::to_string(kPicture.width()) + "," + std::to_string(kPicture.height());
    }
    void Render() {
        Do(Id::kRenderIt);
        ASSERT_TRUE(WaitUntil([&] { return !ChildRuns(); }));
    }
    std::string PictureOf(int number) { return WorkDir() + "/" + std::to_string(number) + "/brick.png"; }

    static QStringList Windows() {
        return Shown(Ask("xdotool", {"search", "--onlyvisible", "--name", "^Pictures$"}).text)
            .split('\n', Qt::SkipEmptyParts);
    }
    bool IsUp() { return IsChecked(Id::kPictureWindow); }
    pid_t WindowProcess() {
        EXPECT_TRUE(WaitUntil([] { return Windows().size() == 1; }));
        return Shown(Ask("xdotool", {"getwindowpid", Windows().value(0)}).text).trimmed().toInt();
    }
    // The picture is seen somewhere on the screen, pixel by pixel.
    bool IsSeen(const QImage& picture) {
        const QImage screen = Frame().screen()->grabWindow(0).toImage().convertToFormat(QImage::Format_RGB32);
        const auto lineOf = [](const QImage& image, int y) {
            return reinterpret_cast<const QRgb*>(image.constScanLine(y));
        };
        const auto isAt = [&](int left, int top) {
            for (int y = 0; y < picture.height(); ++y)
                if (!std::equal(lineOf(picture, y), lineOf(picture, y) + picture.width(),
                                lineOf(screen, top + y) + left))
                    return false;
            return true;
        };
        for (int top = 0; top + picture.height() <= screen.height(); ++top)
            for (int left = 0; left + picture.width() <= screen.width(); ++left)
                if (lineOf(screen, top)[left] == lineOf(picture, 0)[0] && isAt(left, top)) return true;
        return false;
    }
    bool ComesToBeSeen(const std::string& file) {
        return WaitUntil([&] {
            const QImage picture = QImage(Shown(file)).convertToFormat(QImage::Format_RGB32);
            return !picture.isNull() && IsSeen(picture);
        });
    }
    // A run of the window's program; its exit status and what it says to standard error.
    std::pair<int, std::string> Run(const QStringList& words, const std::string& display) {
        QProcess process;
        QStringList variables;
        Environment other = environment;
        other.Set("DISPLAY", display);
        other.Set("TAVRN_WORKDIR", "/other desk");
        for (const std::string& variable : other.ToList()) variables << Shown(variable);
        process.setEnvironment(variables);
        process.start(Shown(test::BuildPath("bin/tavrin-view")), words);
        EXPECT_TRUE(WaitUntil([&] { return process.state() == QProcess::NotRunning; }));
        return {process.exitCode(), process.readAllStandardError().toStdString()};
    }
    std::string Display() { return environment.Get("DISPLAY").value_or(""); }
};

TEST_F(PictureWindowProcess, ARenderStandsInTheWindowWhichTakesNoFocus) {
    OpenExample();
    Render();
    ASSERT_TRUE(WaitUntil([&] { return IsUp(); }));
    EXPECT_TRUE(ComesToBeSeen(PictureOf(1)));
    EXPECT_TRUE(Frame().isActiveWindow());
    const pid_t process = WindowProcess();
    Document().m_renderOptions["MRAY_OBJECT"] = "torus";
    Render();
    EXPECT_TRUE(ComesToBeSeen(PictureOf(2)));
    EXPECT_EQ(WindowProcess(), process) << "the window is used again";
    EXPECT_TRUE(Frame().isActiveWindow());
}

TEST_F(PictureWindowProcess, TheCommandBringsItUpAndAwayAndItStaysBesideTheDesk) {
    Start();
    Frame().move(100, 100);
    Frame().resize(700, 600);
    EXPECT_TRUE(IsEnabled(Id::kPictureWindow));
    Do(Id::kPictureWindow);
    ASSERT_TRUE(WaitUntil([&] { return IsUp(); }));
    const auto leftOf = [&](int x) {
        return WaitUntil([&] {
            const std::string told = Ask("xdotool", {"getwindowgeometry", Windows().value(0)}).text;
            const QString at = Shown(told).section("Position: ", 1).section(',', 0, 0);
            return std::abs(at.toInt() - x) <= 8;  // what is drawn round a window is not told in the same way
        });
    };
    EXPECT_TRUE(leftOf(Frame().frameGeometry().right() + 1));
    Frame().move(200, 150);
    EXPECT_TRUE(leftOf(Frame().frameGeometry().right() + 1));
    Do(Id::kPictureWindow);
    EXPECT_TRUE(WaitUntil([&] { return !IsUp(); }));
    EXPECT_TRUE(WaitUntil([] { return Windows().isEmpty(); }));
}

TEST_F(PictureWindowProcess, WhatTheUserWantsThereTheDeskDoes) {
    OpenExample();
    Render();
    ASSERT_TRUE(WaitUntil([&] { return IsUp(); }));
    ASSERT_TRUE(ComesToBeSeen(PictureOf(1)));
    ASSERT_TRUE(WaitUntil([&] {
        Ask("xdotool", {"windowactivate", "--sync", Windows().value(0), "key", "k"});
        return fs::exists(directory / "brick-1.tvn");
    })) << "kept";
    EXPECT_TRUE(fs::exists(directory / "brick-1.png"));
}

TEST_F(PictureWindowProcess, KilledItComesBackWithTheNextRenderAndKnowsAll) {
    OpenExample();
    Render();
    ASSERT_TRUE(ComesToBeSeen(PictureOf(1)));
    const pid_t first = WindowProcess();
    ::kill(first, SIGKILL);
    ASSERT_TRUE(WaitUntil([&] { return !IsUp(); }));
    Do(Id::kPictureWindow);
    ASSERT_TRUE(WaitUntil([&] { return IsUp(); }));
    EXPECT_NE(WindowProcess(), first);
    EXPECT_TRUE(ComesToBeSeen(PictureOf(1))) << "what was rendered before";
    ::kill(WindowProcess(), SIGKILL);
    ASSERT_TRUE(WaitUntil([&] { return !IsUp(); }));
    Document().m_renderOptions["MRAY_OBJECT"] = "torus";
    Render();
    EXPECT_TRUE(ComesToBeSeen(PictureOf(2)));
}

TEST_F(PictureWindowProcess, OneThatIsStoppedHoldsUpNoRender) {
    OpenExample();
    Render();
    ASSERT_TRUE(ComesToBeSeen(PictureOf(1)));
    const pid_t window = WindowProcess();
    ::kill(window, SIGSTOP);
    Document().m_renderOptions["MRAY_OBJECT"] = "torus";
    for (int i = 0; i < 3; ++i) Render();
    EXPECT_TRUE(WaitUntil([&] { return Log().find("wrote " + PictureOf(4)) != std::string::npos; }));
    ::kill(window, SIGCONT);
    EXPECT_TRUE(ComesToBeSeen(PictureOf(4)));
    EXPECT_EQ(WindowProcess(), window);
}

TEST_F(PictureWindowProcess, OneWindowServesWhoeverHandsItPictures) {
    Start();
    Do(Id::kPictureWindow);
    ASSERT_TRUE(WaitUntil([&] { return IsUp(); }));
    const pid_t window = WindowProcess();
    QImage image(kPicture, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) image.setPixel(x, y, qRgb(x, y, x ^ y));
    ASSERT_TRUE(image.save(Shown(directory / "other.png")));
    EXPECT_EQ(Run({"--hand", "3", "other", Shown(directory / "other.png")}, Display()).first, 0);
    EXPECT_TRUE(ComesToBeSeen(directory / "other.png"));
    EXPECT_EQ(Run({}, Display()).first, 0) << "who would be a second one leaves at once";
    EXPECT_EQ(WindowProcess(), window);
    EXPECT_TRUE(IsUp());
}

TEST_F(PictureWindowProcess, AHandStartsTheWindowAndIsGone) {
    Start();
    QImage image(kPicture, QImage::Format_RGB32);
    image.fill(qRgb(12, 200, 77));
    ASSERT_TRUE(image.save(Shown(directory / "it.png")));
    EXPECT_EQ(Run({"--hand", "1", "it", Shown(directory / "it.png")}, Display()).first, 0);
    EXPECT_TRUE(ComesToBeSeen(directory / "it.png"));
    EXPECT_TRUE(WaitUntil([&] { return IsUp(); })) << "a desk that was there finds it";
    EXPECT_TRUE(Frame().isActiveWindow());
}

TEST_F(PictureWindowProcess, WithoutADisplayNothingHappens) {
    EXPECT_EQ(Run({"--hand", "1", "it", "it.png"}, ""), std::make_pair(0, std::string()));
    EXPECT_EQ(Run({}, ""), std::make_pair(1, std::string("tavrin-view: there is no display\n")));
    EXPECT_TRUE(fs::is_empty(directory / "runtime"));
}

TEST_F(PictureWindowProcess, AWrongCallIsTold) {
    for (const QStringList& words : {QStringList{"--hand"},
                                     {"--hand", "x", "it", "it.png"},
                                     {"--hand", "-1", "it", "it.png"},
                                     {"--hand", "1", "it", ""},
                                     {"--hand", "1", "it", "it.png", "--odd"}}) {
        const auto [status, errors] = Run(words, Display());
        EXPECT_EQ(status, 2);
        EXPECT_THAT(errors, HasSubstr("usage: tavrin-view --hand NUMBER NAME FILE"));
    }
    EXPECT_EQ(Run({"--odd"}, Display()).first, 2);
    EXPECT_EQ(Run({"--version"}, Display()).first, 0);
    EXPECT_EQ(Run({"--help"}, "").first, 0);
    EXPECT_TRUE(Windows().isEmpty());
}

}  // namespace
}  // namespace tavrin

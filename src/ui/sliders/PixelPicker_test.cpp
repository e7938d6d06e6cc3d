// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/PixelPicker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAction>
#include <QDialog>
#include <QPainter>
#include <memory>
#include <string>
#include <vector>

#include "sliders/ColorModel.h"
#include "support/TestSite.h"
#include "ui/sliders/HandTest.h"
#include "ui/support/Windows.h"

namespace tavrin {
namespace {

using test::DragTo;
using test::PressAt;
using test::ReleaseAt;
using testing::ElementsAre;
using testing::IsEmpty;

const QPointF kOutside{500, 300};

class PixelPicker : public testing::Test {
  protected:
    PixelPicker() {
        report.SetSink(&sink);
        picker->resize(60, 24);
        picker->SetCallback([this](float r, float g, float b) { told.push_back({r, g, b}); });
    }

    test::CollectingSink sink;
    Report report;
    std::vector<QPointF> read;  // the places that were read
    std::optional<QRgb> screen = qRgb(255, 51, 1);
    std::vector<Color> told;
    std::unique_ptr<CPixelPicker> picker =
        std::make_unique<CPixelPicker>(nullptr, report, [this](QPointF place) {
            read.push_back(place);
            return screen;
        });
};

TEST_F(PixelPicker, IsAButtonThatSaysWhatItIs) {
    EXPECT_EQ(picker->text(), "CPICK");
    EXPECT_TRUE(picker->isEnabled());
    EXPECT_EQ(sink.log, "");
}

TEST_F(PixelPicker, AReleaseElsewherePicksTheColorUnderTheCursorInThousandths) {
    PressAt(*picker, {5, 5});
    DragTo(*picker, {300, 200});
    EXPECT_THAT(told, IsEmpty());
    ReleaseAt(*picker, kOutside);
    EXPECT_THAT(read, ElementsAre(picker->mapToGlobal(kOutside)));
    EXPECT_THAT(told, ElementsAre(Color{1, 0.2F, 0.004F}));
}

TEST_F(PixelPicker, EachByteIsItsShareOfAllRoundedToThousandths) {
    for (int byte = 0; byte < 256; ++byte) {
        screen = qRgb(byte, 255 - byte, 0);
        PressAt(*picker, {5, 5});
        ReleaseAt(*picker, kOutside);
        EXPECT_NEAR(told.back().r, byte / 255.0, 0.00051);
        EXPECT_EQ(told.back(), Rounded(told.back()));
    }
    EXPECT_EQ(told[127].r, 0.498F);
}

TEST_F(PixelPicker, AReleaseInsideTheButtonPicksNothing) {
    PressAt(*picker, {5, 5});
    DragTo(*picker, {300, 200});
    ReleaseAt(*picker, {59.9, 23.9});
    EXPECT_THAT(read, IsEmpty());
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(PixelPicker, TheFirstPixelBesideTheButtonIsOutside) {
    PressAt(*picker, {5, 5});
    ReleaseAt(*picker, {60, 5});
    PressAt(*picker, {5, 5});
    ReleaseAt(*picker, {5, -0.5});
    EXPECT_EQ(told.size(), 2U);
}

TEST_F(PixelPicker, TheCursorIsACrossWhileItTracks) {
    const Qt::CursorShape before = picker->cursor().shape();
    PressAt(*picker, {5, 5});
    EXPECT_EQ(picker->cursor().shape(), Qt::CrossCursor);
    DragTo(*picker, {300, 200});
    EXPECT_EQ(picker->cursor().shape(), Qt::CrossCursor);
    ReleaseAt(*picker, kOutside);
    EXPECT_EQ(picker->cursor().shape(), before);
}

TEST_F(PixelPicker, StaysDownWhileItTracks) {
    PressAt(*picker, {5, 5});
    DragTo(*picker, {300, 200});
    EXPECT_TRUE(picker->isDown());
    ReleaseAt(*picker, kOutside);
    EXPECT_FALSE(picker->isDown());
}

TEST_F(PixelPicker, EscapePicksNothing) {
    PressAt(*picker, {5, 5});
    DragTo(*picker, {300, 200});
    QTest::keyClick(picker.get(), Qt::Key_Escape);
    EXPECT_NE(picker->cursor().shape(), Qt::CrossCursor);
    EXPECT_FALSE(picker->isDown());
    ReleaseAt(*picker, kOutside);
    EXPECT_THAT(told, IsEmpty());
    PressAt(*picker, {5, 5});
    ReleaseAt(*picker, kOutside);
    EXPECT_EQ(told.size(), 1U);
}

TEST_F(PixelPicker, EscapeIsItsOwnOnlyWhileItTracks) {
    QAction command(picker.get());
    int calls = 0;
    command.setShortcut(QKeySequence(Qt::Key_Escape));
    command.setShortcutContext(Qt::ApplicationShortcut);
    picker->addAction(&command);
    QObject::connect(&command, &QAction::triggered, picker.get(), [&calls] { ++calls; });
    test::ShowActive(*picker);
    test::GiveFocus(*picker);
    PressAt(*picker, {5, 5});
    QTest::keyClick(picker.get(), Qt::Key_Escape);
    EXPECT_EQ(calls, 0);
    ReleaseAt(*picker, kOutside);
    EXPECT_THAT(told, IsEmpty());
    QTest::keyClick(picker.get(), Qt::Key_Escape);
    EXPECT_EQ(calls, 1);
}

TEST_F(PixelPicker, HiddenDisabledOrBlockedByABoxItPicksNothing) {
    test::ShowActive(*picker);
    PressAt(*picker, {5, 5});
    picker->hide();
    picker->show();
    ReleaseAt(*picker, kOutside);
    PressAt(*picker, {5, 5});
    picker->setEnabled(false);
    picker->setEnabled(true);
    ReleaseAt(*picker, kOutside);
    PressAt(*picker, {5, 5});
    QDialog box;
    test::WhenDialogComes([](QDialog& dialog) { dialog.reject(); });
    box.exec();
    ReleaseAt(*picker, kOutside);
    EXPECT_THAT(told, IsEmpty());
    EXPECT_NE(picker->cursor().shape(), Qt::CrossCursor);
}

TEST_F(PixelPicker, OtherButtonsOfTheMouseDoNothing) {
    PressAt(*picker, {5, 5}, Qt::RightButton);
    ReleaseAt(*picker, kOutside, Qt::RightButton);
    EXPECT_THAT(read, IsEmpty());
    PressAt(*picker, {5, 5});
    ReleaseAt(*picker, kOutside, Qt::RightButton);
    EXPECT_THAT(read, IsEmpty());
    ReleaseAt(*picker, kOutside);
    EXPECT_EQ(told.size(), 1U);
}

TEST_F(PixelPicker, APlaceWhereNoScreenIsPicksNothing) {
    screen.reset();
    PressAt(*picker, {5, 5});
    ReleaseAt(*picker, kOutside);
    EXPECT_EQ(read.size(), 1U);
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(PixelPicker, WithNobodyToTellTheScreenIsNotRead) {
    picker->SetCallback({});
    PressAt(*picker, {5, 5});
    ReleaseAt(*picker, kOutside);
    EXPECT_THAT(read, IsEmpty());
    EXPECT_NE(picker->cursor().shape(), Qt::CrossCursor);
}

TEST_F(PixelPicker, TheOneThatHearsMayDestroyIt) {
    int calls = 0;
    picker->SetCallback([&](float, float, float) {
        ++calls;
        picker.reset();
    });
    PressAt(*picker, {5, 5});
    ReleaseAt(*picker, kOutside);
    EXPECT_EQ(picker, nullptr);
    EXPECT_EQ(calls, 1);
}

// The line comes once in a process, however often this test runs in it.
TEST_F(PixelPicker, WhereTheScreenCannotBeReadItIsDisabledAndTheFirstOneSaysSo) {
    static test::CollectingSink everyRun;
    report.SetSink(&everyRun);
    for (int i = 0; i < 3; ++i) {
        QWidget panel;
        CPixelPicker other(&panel, report, ScreenReader());
        EXPECT_FALSE(other.isEnabled());
        panel.setEnabled(false);
        panel.setEnabled(true);
        EXPECT_FALSE(other.isEnabled());
    }
    EXPECT_EQ(everyRun.log, "disabled pixel pickers as screen reads unsupported\r\n");
    report.SetSink(&sink);
}

// The screen of the platform

// Shows 2 by 2 fields of color, 40 pixels large, with a line of one device pixel at the left.
class ColorFields : public QWidget {
  public:
    ColorFields() : QWidget(nullptr, Qt::FramelessWindowHint) { setFixedSize(80, 80); }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(0, 0, 40, 40, QColor(255, 0, 51));
        painter.fillRect(40, 0, 40, 40, QColor(0, 102, 255));
        painter.fillRect(0, 40, 40, 40, QColor(153, 204, 0));
        painter.fillRect(40, 40, 40, 40, QColor(26, 26, 26));
        painter.fillRect(QRectF(0, 0, 1 / devicePixelRatioF(), 80), Qt::white);
    }
};

TEST(PlatformScreenReader, ReadsThePixelThatIsSeenThere) {
    const QByteArray before = qgetenv("WAYLAND_DISPLAY");
    qunsetenv("WAYLAND_DISPLAY");
    const ScreenReader reader = PlatformScreenReader();
    if (!before.isEmpty()) qputenv("WAYLAND_DISPLAY", before);
    ASSERT_TRUE(reader) << "this test wants an X server";
    ColorFields window;
    window.move(640, 480);
    test::ShowActive(window);
    const auto seen = [&](double x, double y) {
        return reader(window.mapToGlobal(QPointF(x, y))).value_or(0);
    };
    EXPECT_TRUE(test::WaitUntil([&] { return seen(60, 60) == qRgb(26, 26, 26); }));
    EXPECT_EQ(seen(20, 20), qRgb(255, 0, 51));
    EXPECT_EQ(seen(60, 20), qRgb(0, 102, 255));
    EXPECT_EQ(seen(20, 60), qRgb(153, 204, 0));
    const double devicePixel = 1 / window.devicePixelRatioF();
    EXPECT_EQ(seen(0, 20), qRgb(255, 255, 255));
    EXPECT_EQ(seen(devicePixel * 0.9, 20), qRgb(255, 255, 255));
    EXPECT_EQ(seen(devicePixel * 1.1, 20), qRgb(255, 0, 51));
    EXPECT_EQ(seen(40 - devicePixel * 0.1, 20), qRgb(255, 0, 51));
    EXPECT_EQ(seen(40, 20), qRgb(0, 102, 255));
}

TEST(PlatformScreenReader, OffTheScreenThereIsNothing) {
    qunsetenv("WAYLAND_DISPLAY");
    EXPECT_FALSE(PlatformScreenReader()({-50'000, 3}).has_value());
}

TEST(PlatformScreenReader, AServerBelowAnotherDisplayIsNotRead) {
    const QByteArray before = qgetenv("WAYLAND_DISPLAY");
    qputenv("WAYLAND_DISPLAY", "wayland-0");
    EXPECT_FALSE(PlatformScreenReader());
    qunsetenv("WAYLAND_DISPLAY");
    if (!before.isEmpty()) qputenv("WAYLAND_DISPLAY", before);
}

TEST(PlatformScreenReader, APickerReadsItUnlessItIsToldOtherwise) {
    qunsetenv("WAYLAND_DISPLAY");
    ColorFields window;
    window.move(640, 480);
    test::ShowActive(window);
    Report report;
    CPixelPicker picker(nullptr, report);
    std::optional<Color> picked;
    picker.SetCallback([&](float r, float g, float b) { picked = Color{r, g, b}; });
    picker.move(100, 100);
    test::ShowActive(picker);
    const QPointF place = picker.mapFromGlobal(window.mapToGlobal(QPointF(60, 20)));
    EXPECT_TRUE(test::WaitUntil([&] {
        PressAt(picker, {5, 5});
        ReleaseAt(picker, place);
        return picked == Color{0, 0.4F, 1};
    }));
}

}  // namespace
}  // namespace tavrin

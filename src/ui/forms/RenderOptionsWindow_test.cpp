// SPDX-License-Identifier: Apache-2.0
// The form in its window: real keys and clicks, what lands in the options and what is sent.
#include "ui/forms/RenderOptionsWindow.h"

#include <gmock/gmock.h>

#include <QAbstractScrollArea>
#include <QFileDialog>
#include <QGroupBox>
#include <QLabel>
#include <QScreen>
#include <QScrollBar>
#include <QWheelEvent>
#include <memory>

#include "forms/FormTestHost.h"
#include "ui/forms/FormButtonControls.h"
#include "ui/forms/FormFieldControls.h"
#include "ui/forms/FormFrameControl.h"
#include "ui/forms/FormHands.h"

namespace tavrin {
namespace {

using test::Stored;
using test::WaitUntil;
using testing::ElementsAre;
using testing::IsEmpty;

class RenderOptions : public test::FormTest, public test::FormHands {
  protected:
    QWidget& FormWindow() override { return *window; }
    // The window of a form, with what was stored while it was read out of the way.
    void Show(const std::string& text) {
        EXPECT_TRUE(Read(text)) << sink.LastAlert();
        Open();
    }
    void Open() {
        host.stored.clear();
        window = std::make_unique<RenderOptionsWindow>(
            nullptr, form,
            FormNeeds{host, [this](const FormAction& action) {
                          sent.push_back(action.to + "/" + action.message + "/" + action.argument);
                      }});
        test::ShowActive(*window);
    }
    void LeaveTo(QWidget& other) { test::GiveFocus(other); }

    std::unique_ptr<RenderOptionsWindow> window;
    std::vector<std::string> sent;
};

const std::string kExampleBody = test::kExampleForm.substr(4);

// The worked example

TEST_F(RenderOptions, TheExampleStandsAsItsGridSays) {
    Show(kExampleBody);
    EXPECT_EQ(window->windowTitle(), "Render Options [F2]");
    EXPECT_EQ(window->width(), 380);
    const auto& frame = The<FormFrameControl>();
    const auto& depth = The<FormXFieldControl>();
    const auto& size = The<FormXYFieldControl>();
    const auto& ok = The<FormOkFieldControl>();
    const int rowExtent = std::max(depth.height(), size.height()) + 6;
    EXPECT_EQ(depth.pos(), QPoint(6 + ((depth.width() + 6 - depth.width()) >> 1),
                                  6 + ((rowExtent - depth.height()) >> 1)));
    EXPECT_EQ(size.x(), 6 + depth.width() + 6 + 3);
    EXPECT_EQ(frame.width(), 6 + depth.width() + 6 + size.width() + 6 + 6);
    EXPECT_EQ(frame.height(), 6 + rowExtent + 6);
    // The root has one column, as wide as the frame with its spacing.
    EXPECT_EQ(frame.pos(), QPoint(5 + 4, 5 + 4));
    EXPECT_EQ(ok.pos(), QPoint(5 + ((frame.width() + 8 - ok.width()) >> 1), 5 + frame.height() + 8 + 4));
    EXPECT_EQ(frame.findChild<QGroupBox*>()->geometry(), frame.rect());
}

TEST_F(RenderOptions, TheExampleStoresWhatIsChosenAndSendsItsActions) {
    Show(kExampleBody);
    EXPECT_EQ(The<FormEdit>(0).text(), "2.0");
    EXPECT_EQ(The<FormEdit>(1).text(), "640");
    EXPECT_EQ(The<FormEdit>(2).text(), "480");
    Choose(The<FormList>(), 2);
    EXPECT_EQ(host.stored, (Stored{{"RENDER_DEPTH", "4.0"}}));
    EXPECT_EQ(The<FormEdit>(0).text(), "4.0");
    EXPECT_EQ(The<FormList>().currentText(), "Depth");
    Click("Default");
    Click("OK");
    EXPECT_THAT(sent, ElementsAre("roe/use-defaults/", "form/render/render"));
}

// Fields

TEST_F(RenderOptions, AFieldStoresEachKeyAndShowsTheForcedNumberOnceItIsLeft) {
    Show("{\nxfield {\nenvname A\nforcefloat\nvalue 1\n}\nxfield {\nenvname B\n}\n}\n");
    TypeOver(The<FormEdit>(0), "32");
    EXPECT_EQ(host.stored, (Stored{{"A", "3.0"}, {"A", "32.0"}}));
    EXPECT_EQ(The<FormEdit>(0).text(), "32");
    LeaveTo(The<FormEdit>(1));
    EXPECT_EQ(The<FormEdit>(0).text(), "32.0");
}

TEST_F(RenderOptions, TheCaptionOfAListIsNoPreset) {
    Show("{\nxfield {\nenvname A\nvalue 5\noptionlabel Depth\noptioncontents {\n1 Fast\n}\n}\n}\n");
    Choose(The<FormList>(), 0);
    EXPECT_THAT(host.stored, IsEmpty());
    EXPECT_EQ(The<FormEdit>().text(), "5");
}

TEST_F(RenderOptions, APairIsJoinedByItsSeparatorAndShownWithoutIt) {
    Show(
        "{\nxyfield {\nenvname A\nenvseparator x\nvalue 640x480\noptionlabel Size\noptioncontents {\n320,240 "
        "small\n}\n}\n}\n");
    EXPECT_EQ(The<FormEdit>(0).text(), "640");
    EXPECT_EQ(The<FormEdit>(1).text(), "480");
    TypeOver(The<FormEdit>(1), "9");
    EXPECT_EQ(host.stored.back(), (std::pair<std::string, std::string>{"A", "640x9"}));
    Choose(The<FormList>(), 1);
    EXPECT_EQ(host.stored.back().second, "320x240");
    EXPECT_EQ(The<FormEdit>(1).text(), "240");
}

TEST_F(RenderOptions, APairWithoutAValueIsTwoEmptyBoxes) {
    Show("{\nxyfield {\nenvname A\n}\n}\n");
    EXPECT_EQ(The<FormEdit>(0).text(), "");
    EXPECT_EQ(The<FormEdit>(1).text(), "");
    TypeOver(The<FormEdit>(0), "7");
    EXPECT_EQ(host.stored.back().second, "7,");
}

TEST_F(RenderOptions, ThreeAxesStoreInTheirOrder) {
    Show(
        "{\nxyzfield {\nheadinglabel Sun\nxenvname X\nyenvname Y\nzenvname Z\nxvalue 1\nyvalue 2\nzvalue 3\n"
        "yoptionlabel Up\nyoptioncontents {\n9 high\n}\n}\n}\n");
    TypeOver(The<FormEdit>(2), "5");
    EXPECT_EQ(host.stored, (Stored{{"X", "1"}, {"Y", "2"}, {"Z", "5"}}));
    Choose(The<FormList>(1), 1);
    EXPECT_EQ(The<FormEdit>(1).text(), "9");
    EXPECT_EQ(The<FormList>(1).currentText(), "Up");
    EXPECT_EQ(The<QGroupBox>().title(), "Sun");
}

TEST_F(RenderOptions, AnOptionThatChangesElsewhereIsShownAndNotStored) {
    Show(
        "{\nxfield {\nenvname A\nvalue 1\n}\nledbutton {\nenvname L\nbuttonlabel Led\nstate 0\n}\n"
        "chooser {\nenvname C\nvalue b\nchoosercontents {\na\nb\n}\n}\nstringinput {\nenvname S\nvalue "
        "s\n}\n}\n");
    form.BroadcastOption("A", "2");
    form.BroadcastOption("L", "TRUE");
    form.BroadcastOption("C", "a");
    form.BroadcastOption("S", "t");
    EXPECT_EQ(The<FormEdit>(0).text(), "2");
    EXPECT_TRUE(Button("Led").isChecked());
    EXPECT_EQ(The<FormList>(1).currentText(), "a");
    EXPECT_EQ(The<FormEdit>(1).text(), "t");
    EXPECT_THAT(host.stored, IsEmpty());
    EXPECT_THAT(sent, IsEmpty());
}

TEST_F(RenderOptions, DefaultsAreShownAndStored) {
    Show("{\nxfield {\nenvname A\nvalue 1\n}\n}\n");
    TypeOver(The<FormEdit>(), "7");
    host.variables["A"] = "1";
    form.LoadDefaults(host);
    EXPECT_EQ(The<FormEdit>().text(), "1");
}

TEST_F(RenderOptions, InfoShowsTheHelpAsPlainTextUnderTheCaption) {
    Show(
        "{\nxfield {\nenvname A\noptionlabel Depth\noptioncontents {\n1\n}\nhelp {\nMore <b>is</b> "
        "slower.\n\n> Much.\n}\n}\n"
        "xfield {\nenvname B\n}\n}\n");
    test::PressWhenBoxComes("OK");
    Click("Info...");
    EXPECT_THAT(test::BoxesShown(), ElementsAre("Depth: More <b>is</b> slower.\n\n Much."));
    EXPECT_FALSE(All<QPushButton>().back()->isEnabled());  // there is nothing to tell
}

// Buttons and lists

TEST_F(RenderOptions, ALedButtonStoresItsStateAndSendsItPlainly) {
    Show(
        "{\nledbutton {\nenvname L\nbuttonlabel \"A & B\"\nstate 0\nenvon yes\nenvoff no\nactionto "
        "x\nactionmsg m\n}\n}\n");
    QPushButton& led = Button("A && B");
    QTest::mouseClick(&led, Qt::LeftButton);
    QTest::mouseClick(&led, Qt::LeftButton);
    EXPECT_EQ(host.stored, (Stored{{"L", "yes"}, {"L", "no"}}));
    EXPECT_THAT(sent, ElementsAre("x/m/1", "x/m/0"));
}

TEST_F(RenderOptions, ALedButtonThatIsOnIsSeenInEveryPalette) {
    Show(
        "{\nledbutton {\nenvname A\nbuttonlabel On\nstate 1\n}\nledbutton {\nenvname B\nbuttonlabel "
        "Off\nstate "
        "0\n}\n}\n");
    QPalette dark = window->palette();
    for (const auto role : {QPalette::Window, QPalette::Button}) dark.setColor(role, QColor(53, 53, 53));
    dark.setColor(QPalette::ButtonText, Qt::white);
    for (const QPalette& palette : {window->palette(), dark}) {
        window->setPalette(palette);
        const auto ground = [this](const char* button) {
            const QImage image = Button(button).grab().toImage();
            return image.pixelColor(image.width() / 2, image.height() / 5);
        };
        const QColor on = ground("On");
        const QColor off = ground("Off");
        const int distance = std::abs(on.red() - off.red()) + std::abs(on.green() - off.green()) +
                             std::abs(on.blue() - off.blue());
        EXPECT_GT(distance, 60) << Bytes(on.name()) << " " << Bytes(off.name());
    }
}

TEST_F(RenderOptions, AChooserStoresTheLineAndSendsIt) {
    Show("{\nchooser {\nenvname C\nvalue a\nactionto x\nactionmsg m\nchoosercontents {\na\nb c\n}\n}\n}\n");
    Choose(The<FormList>(), 1);
    EXPECT_EQ(host.stored, (Stored{{"C", "b c"}}));
    EXPECT_THAT(sent, ElementsAre("x/m/b c"));
    QTest::keyClick(&The<FormList>(), Qt::Key_Up);
    EXPECT_EQ(host.stored.back().second, "a");
}

TEST_F(RenderOptions, AChooserIsAsWideAsItsWidestLineOrAsItsTemplate) {
    Show(
        "{\nchooser {\nchoosercontents {\na\na much longer line\n}\n}\nchooser {\nresize "
        "false\nchoosercontents {\na\n}\n}\n}\n");
    const auto& list = The<FormList>(0);
    EXPECT_EQ(list.width(), list.fontMetrics().horizontalAdvance("a much longer line") + 30);
    EXPECT_EQ(The<FormList>(1).width(), DialogUnits(list.fontMetrics()).Across(82));
}

TEST_F(RenderOptions, AButtonSendsItsActionAndOneWithoutATargetNothing) {
    Show(
        "{\nbutton {\nbuttonlabel Go\nactionto form\nactionmsg render\nactionarg render\n}\nbutton "
        "{\nbuttonlabel Idle\n}\n}\n");
    Click("Idle");
    EXPECT_THAT(sent, IsEmpty());
    Click("Go");
    EXPECT_THAT(sent, ElementsAre("form/render/render"));
}

TEST_F(RenderOptions, ALabelIsAsLargeAsItsTextOrAsItIsTold) {
    Show(
        "{\nlabel {\nlabel \"<b>Light & shade\"\n}\nlabel {\nlabel x\nresize false\nwidth 200\nheight "
        "40\njustify right\n}\n"
        "label {\nlabel y\nresize false\n}\n}\n");
    const auto& text = The<QLabel>(0);
    EXPECT_EQ(text.text(), "<b>Light & shade");
    EXPECT_EQ(text.textFormat(), Qt::PlainText);
    EXPECT_EQ(text.pos(), QPoint(0, 2));
    EXPECT_EQ(The<FormLabelControl>(0).size(), text.size() + QSize(0, 4));
    EXPECT_EQ(The<FormLabelControl>(1).size(), QSize(200, 40));
    EXPECT_EQ(The<QLabel>(1).width(), 200);
    EXPECT_TRUE(The<QLabel>(1).alignment() & Qt::AlignRight);
    const DialogUnits units(text.fontMetrics());
    EXPECT_EQ(The<FormLabelControl>(2).size(), QSize(units.Across(64), units.Down(12)));
}

// Texts and files

TEST_F(RenderOptions, ATextMakesRoomForItsCaption) {
    Show(
        "{\nstringinput {\nlabel a\nenvname A\n}\nstringinput {\nlabel \"a caption that needs much more "
        "room\"\nenvname B\nfile true\n}\n}\n");
    const auto& plain = The<FormStringInputControl>(0);
    const auto& wide = The<FormStringInputControl>(1);
    EXPECT_GT(wide.width(), plain.width());
    EXPECT_GT(The<FormEdit>(1).x(), The<FormEdit>(0).x());
    EXPECT_EQ(plain.findChildren<QPushButton*>().at(0)->isVisible(), false);
    EXPECT_TRUE(wide.findChildren<QPushButton*>().at(0)->isVisible());
    const auto* info = plain.findChildren<QPushButton*>().at(1);
    EXPECT_EQ(plain.width(), info->geometry().right() + 1 + 4);
    const auto* file = plain.findChildren<QPushButton*>().at(0);
    EXPECT_EQ(info->x(), wide.findChildren<QPushButton*>().at(1)->x() - The<FormEdit>(1).x() +
                             The<FormEdit>(0).x() - file->width() - 4);
}

TEST_F(RenderOptions, AFileIsTakenAndItsDirectoryOfferedNextTime) {
    const test::TempDir files;
    files.Write("one.bmp", "");
    Show("{\nstringinput {\nlabel Image\nenvname A\nvalue x\nfile true\n}\n}\n");
    QStringList filters;
    QString directory;
    for (int time = 0; time < 2; ++time) {
        test::WhenDialogComes([&](QDialog& dialog) {
            auto& chooser = static_cast<QFileDialog&>(dialog);
            EXPECT_EQ(chooser.windowTitle(), "Select File");
            filters = chooser.nameFilters();
            directory = chooser.directory().path();
            chooser.selectFile(Shown(files / "one.bmp"));
            QMetaObject::invokeMethod(&chooser, time == 0 ? "accept" : "reject");
        });
        Click("File...");
    }
    EXPECT_EQ(filters, QStringList({"All Files (*)", "Bitmap Images (*.bmp)", "SGI Images (*.sgi)"}));
    EXPECT_EQ(Bytes(directory), files.Path());
    EXPECT_EQ(host.stored, (Stored{{"A", files / "one.bmp"}}));
    EXPECT_EQ(The<FormEdit>().text(), Shown(files / "one.bmp"));
}

// The window

TEST_F(RenderOptions, AnEmptyFormHasTheSizeOfItsTemplate) {
    Show("{\n}\n");
    const DialogUnits units(window->fontMetrics());
    EXPECT_EQ(The<FormRootControl>().size(), QSize(units.Across(187), units.Down(98)));
}

TEST_F(RenderOptions, AnEmptyFrameHasTheSizeOfItsTemplate) {
    Show("{\nframe {\n}\n}\n");
    const DialogUnits units(window->fontMetrics());
    EXPECT_EQ(The<FormFrameControl>().size(), QSize(units.Across(356), units.Down(272)));
}

TEST_F(RenderOptions, BarsAreAlwaysThereAndScrollByLinesOfTenPixels) {
    std::string text = "{\nwinwidth 300\nwinheight 200\n";
    for (int i = 0; i < 20; ++i) text += "xfield {\nenvname A" + std::to_string(i) + "\n}\n";
    Show(text + "}\n");
    EXPECT_EQ(window->size(), QSize(300, 200));
    auto& area = *window->findChild<QAbstractScrollArea*>();
    QScrollBar& bar = *area.verticalScrollBar();
    EXPECT_TRUE(bar.isVisible());
    EXPECT_TRUE(area.horizontalScrollBar()->isVisible());
    EXPECT_EQ(bar.maximum(), The<FormRootControl>().height() - area.viewport()->height());
    bar.triggerAction(QAbstractSlider::SliderSingleStepAdd);
    EXPECT_EQ(bar.value(), 10);
    EXPECT_EQ(The<FormRootControl>().y(), -10);
    bar.triggerAction(QAbstractSlider::SliderToMaximum);
    EXPECT_EQ(The<FormRootControl>().geometry().bottom() + 1, area.viewport()->height());
}

TEST_F(RenderOptions, TheTabKeyBringsWhatItReachesIntoView) {
    std::string text = "{\nwinwidth 150\nwinheight 120\n";
    for (int i = 0; i < 10; ++i) text += "xfield {\nenvname A" + std::to_string(i) + "\n}\n";
    Show(text + "}\n");
    auto& area = *window->findChild<QAbstractScrollArea*>();
    const auto isInView = [&](const QWidget& control) {
        const QPoint corner = control.mapTo(area.viewport(), QPoint(0, 0));
        return area.viewport()->rect().contains(corner) &&
               area.viewport()->height() >= corner.y() + control.height();
    };
    test::GiveFocus(The<FormEdit>(0));
    int reached = 0;
    for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Backtab}) {
        for (int step = 0; step < 30; ++step) {
            QWidget* focused = window->focusWidget();
            QTest::keyClick(focused, key);
            focused = window->focusWidget();
            EXPECT_TRUE(isInView(*focused)) << Bytes(focused->accessibleName()) << " " << step;
            if (focused == &The<FormEdit>(9)) ++reached;
        }
    }
    EXPECT_GE(reached, 2);
}

TEST_F(RenderOptions, TheWheelScrollsAndChangesAListOnlyWhereItHasTheFocus) {
    std::string text = "{\nwinheight 120\nchooser {\nenvname C\nvalue b\nchoosercontents {\na\nb\nc\n}\n}\n";
    for (int i = 0; i < 20; ++i) text += "xfield {\nenvname A" + std::to_string(i) + "\n}\n";
    Show(text + "}\n");
    auto& list = The<FormList>();
    test::GiveFocus(The<FormEdit>());
    const auto turn = [&](QWidget& over) {
        const QPoint at = over.rect().center();
        QWheelEvent event(at, over.mapToGlobal(at), {}, {0, -120}, Qt::NoButton, {}, Qt::NoScrollPhase,
                          false);
        QSpontaneKeyEvent::setSpontaneous(&event);
        qApp->notify(&over, &event);
    };
    turn(list);
    EXPECT_EQ(list.currentText(), "b");
    EXPECT_EQ(window->findChild<QAbstractScrollArea*>()->verticalScrollBar()->value(), 10);
    test::GiveFocus(list);
    turn(list);
    EXPECT_EQ(list.currentText(), "c");
    EXPECT_EQ(host.stored.back().second, "c");
}

TEST_F(RenderOptions, TheWindowIsNeverLargerThanTheScreen) {
    Show("{\nwinwidth 1000000000\nwinheight 2147483647\nlabel {\nlabel a\n}\n}\n");
    const QSize room = window->screen()->availableSize();
    EXPECT_EQ(window->size(), room);
    window.reset();
    form.ClearAll(host);
    form.winWidth = 0;
    form.winHeight = 0;
    Show("{\nlabel {\nlabel a\nresize false\nwidth 30000\nheight 30000\n}\n}\n");
    EXPECT_EQ(window->size(), room);
    auto& area = *window->findChild<QAbstractScrollArea*>();
    EXPECT_EQ(area.horizontalScrollBar()->maximum(),
              The<FormRootControl>().width() - area.viewport()->width());
}

TEST_F(RenderOptions, WhatAFailedSectionLeftStandsBelowTheRestOneBelowTheOther) {
    EXPECT_TRUE(Read("{\nxfield {\nenvname A\n}\n}\n"));
    EXPECT_FALSE(Read("{\nxfield {\nenvname B\n}\nxfield {\nenvname C\n}\nnonsense {\n}\n}\n"));
    Open();
    const auto fields = All<FormXFieldControl>();
    ASSERT_EQ(fields.size(), 3U);
    EXPECT_GT(fields[1]->y(), fields[0]->geometry().bottom());
    EXPECT_GT(fields[2]->y(), fields[1]->geometry().bottom());
    EXPECT_GT(The<FormRootControl>().height(), fields[2]->geometry().bottom());
}

TEST_F(RenderOptions, WhatHostileFormsLeaveCanBeShown) {
    std::string frames;
    for (int i = 0; i < 150; ++i) frames += "frame {\n";
    std::string lines;
    for (int i = 0; i < 100000; ++i) lines += "line " + std::to_string(i) + "\n";
    for (const std::string& text :
         {std::string("{\nframe {\n{\nvertical 0\n}\nlabel {\nlabel a\n}\n}\n}\n"), "{\n" + frames,
          "{\nchooser {\nenvname C\nvalue \"line 9\"\nchoosercontents {\n" + lines + "}\n}\n}\n",
          std::string("{\nframe {\n{\nhorizontal -5\n}\nlabel {\nlabel a\nresize false\nwidth -7\nheight "
                      "0\n}\n}\n}\n"),
          "{\nlabel {\nlabel \"" + std::string(10000, 'x') +
              "\"\n}\nxfield {\nenvname \xFF\xFE\nvalue \xC3\n}\n}\n"}) {
        form.ClearAll(host);
        Read(text);
        Open();
        EXPECT_TRUE(window->isVisible());
        window.reset();
    }
}

TEST_F(RenderOptions, AnActionThatChangesTheFormWhileItGoesOnIsSafe) {
    EXPECT_TRUE(Read(
        "{\nchooser {\nenvname C\nvalue a\nactionto x\nactionmsg m\nchoosercontents {\na\nb\n}\n}\n}\n"));
    host.stored.clear();
    window =
        std::make_unique<RenderOptionsWindow>(nullptr, form, FormNeeds{host, [this](const FormAction&) {
                                                                           form.BroadcastOption("C", "a");
                                                                           test::HandleEvents();
                                                                       }});
    test::ShowActive(*window);
    Choose(The<FormList>(), 1);
    EXPECT_EQ(The<FormList>().currentText(), "a");
}

}  // namespace
}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/TextPanels.h"

#include <QApplication>
#include <QFileDialog>
#include <QMenu>
#include <QPushButton>
#include <QTimer>

#include "base/Files.h"
#include "ui/sliders/SliderTest.h"

namespace tavrin {
namespace {

using test::WaitUntil;
using testing::ElementsAre;
using testing::IsEmpty;

class TextPanels : public test::SliderTest {
  protected:
    COpButton& ShowString(const std::string& fields) {
        return *Show("input s { string { format \"%s\" " + fields + " } }").inputs.at(0);
    }
    static std::string& ValueOf(COpButton& button) {
        return static_cast<COpValueString&>(*button.values.at(0)).value;
    }
    OneLineField& Value(const COpButton& button) { return Find<OneLineField>(button, "Value"); }
    QPushButton& Button(const COpButton& button, const QString& text) {
        for (auto* candidate : FrameOf(button).findChildren<QPushButton*>()) {
            if (candidate->text() == text && candidate->isVisible()) return *candidate;
        }
        throw std::logic_error("no button");
    }
    // Opens the menu of the panel and does something with it, which is then closed.
    void WithOptions(const COpButton& button, std::function<void(QMenu&)> work) {
        bool isDone = false;
        QTimer wait;
        QObject::connect(&wait, &QTimer::timeout, [&] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (menu == nullptr || isDone) return;
            isDone = true;
            work(*menu);
            menu->close();
        });
        wait.start(5);
        QTest::mouseClick(&Button(button, "Options..."), Qt::LeftButton);
        EXPECT_TRUE(isDone);
    }
    void Choose(const COpButton& button, const QString& text) {
        WithOptions(button, [&](QMenu& menu) {
            for (QAction* item : menu.actions()) {
                if (item->text() != text) continue;
                QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(item).center());
                return;
            }
            ADD_FAILURE() << "no item " << Bytes(text);
        });
    }
};

TEST_F(TextPanels, TheTextIsInTheValueWithEveryKey) {
    COpButton& button = ShowString("value old");
    EXPECT_EQ(Value(button).text(), "old");
    TypeOver(Value(button), "ne\"w\\ #1");
    EXPECT_EQ(ValueOf(button), "ne\"w\\ #1");
    EXPECT_TRUE(document.IsModified());
    TypeOver(Value(button), "");
    EXPECT_EQ(ValueOf(button), "");
}

TEST_F(TextPanels, WhatTheDefinitionDoesNotOfferIsDisabled) {
    COpButton& plain = ShowString("value x");
    EXPECT_FALSE(Button(plain, "File...").isEnabled());
    EXPECT_FALSE(Button(plain, "Options...").isEnabled());
    EXPECT_TRUE(Value(plain).isEnabled());
    COpButton& full = ShowString("value x fileflag 1 noedit options { a }");
    EXPECT_TRUE(Button(full, "File...").isEnabled());
    EXPECT_TRUE(Button(full, "Options...").isEnabled());
    EXPECT_FALSE(Value(full).isEnabled());
}

TEST_F(TextPanels, AChosenOptionIsTheValueAndLeavesTheDocumentUnmodified) {
    COpButton& button = ShowString("value x options { first \"a & b\" _SEPARATOR_ last }");
    std::vector<std::string> items;
    WithOptions(button, [&](QMenu& menu) {
        for (QAction* item : menu.actions()) items.push_back(item->isSeparator() ? "-" : Bytes(item->text()));
    });
    EXPECT_THAT(items, ElementsAre("first", "a && b", "-", "last"));
    EXPECT_EQ(ValueOf(button), "x");
    EXPECT_THAT(changes, IsEmpty());
    Choose(button, "a && b");
    EXPECT_EQ(ValueOf(button), "a & b");
    EXPECT_EQ(Value(button).text(), "a & b");
    EXPECT_FALSE(document.IsModified());
    EXPECT_THAT(changes, ElementsAre("Value: tuned a_1.s"));
    TypeOver(Value(button), "y");
    EXPECT_TRUE(document.IsModified());
}

TEST_F(TextPanels, OptionsOfSeparatorsAloneYieldNothing) {
    COpButton& button = ShowString("value x options { _SEPARATOR_ _SEPARATOR_ }");
    EXPECT_TRUE(Button(button, "Options...").isEnabled());
    int separators = 0;
    WithOptions(button, [&](QMenu& menu) {
        for (QAction* item : menu.actions()) separators += item->isSeparator() && item->isVisible() ? 1 : 0;
        QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.rect().center());
    });
    EXPECT_EQ(separators, 2);
    EXPECT_EQ(ValueOf(button), "x");
}

TEST_F(TextPanels, ABoxThatGoesWhileItsOptionsAreOpenTakesTheChoiceAlong) {
    COpBox& box = Show("input s { string { value x options { a b } } }");
    WithOptions(*box.inputs.at(0), [&](QMenu& menu) {
        desk.DeleteBox(box);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(menu.actions().at(0)).center());
    });
    EXPECT_THAT(sliders.Frames(), IsEmpty());
}

TEST_F(TextPanels, AFileIsChosenFromWhereTheValueLies) {
    const test::TempDir files;
    files.Write("sub/one.sgi", "");
    files.Write("sub/two.sgi", "");
    COpButton& button = ShowString("fileflag 1");
    ValueOf(button) = (files / "sub") + "\\one.sgi";
    QStringList seen;
    test::WhenDialogComes([&](QDialog& dialog) {
        auto& chooser = static_cast<QFileDialog&>(dialog);
        seen << chooser.windowTitle() << chooser.directory().path() << chooser.nameFilters();
        chooser.selectNameFilter(chooser.nameFilters().at(2));
        chooser.selectFile(Shown(files / "sub/two.sgi"));
        QMetaObject::invokeMethod(&chooser, "accept");
    });
    QTest::mouseClick(&Button(button, "File..."), Qt::LeftButton);
    EXPECT_EQ(seen, QStringList({"Select", Shown(files / "sub"), "All Files (*)", "PIC Images (*.pic)",
                                 "SGI Images (*.sgi)", "Bitmap Images (*.bmp)"}));
    EXPECT_EQ(ValueOf(button), files / "sub/two.sgi");
    EXPECT_EQ(Value(button).text(), Shown(files / "sub/two.sgi"));
    EXPECT_TRUE(document.IsModified());
}

TEST_F(TextPanels, CancellingKeepsTheValueAndTheFilter) {
    COpButton& button = ShowString("value x fileflag 1");
    QString filter;
    for (const int chosen : {2, 1}) {
        test::WhenDialogComes([&](QDialog& dialog) {
            auto& chooser = static_cast<QFileDialog&>(dialog);
            filter = chooser.selectedNameFilter();
            chooser.selectNameFilter(chooser.nameFilters().at(chosen));
            dialog.reject();
        });
        QTest::mouseClick(&Button(button, "File..."), Qt::LeftButton);
    }
    EXPECT_EQ(filter, "SGI Images (*.sgi)");
    EXPECT_EQ(ValueOf(button), "x");
    EXPECT_FALSE(document.IsModified());
}

TEST_F(TextPanels, ADirectoryIsNoFile) {
    const test::TempDir files;
    files.Write("sub/one.sgi", "");
    COpButton& button = ShowString("value x fileflag 1");
    bool isStillOpen = false;
    test::WhenDialogComes([&](QDialog& dialog) {
        auto& chooser = static_cast<QFileDialog&>(dialog);
        chooser.setDirectory(Shown(files.Path()));
        chooser.selectFile(Shown(files / "sub"));
        QMetaObject::invokeMethod(&chooser, "accept");
        isStillOpen = chooser.isVisible();
        chooser.reject();
    });
    QTest::mouseClick(&Button(button, "File..."), Qt::LeftButton);
    EXPECT_TRUE(isStillOpen);
    EXPECT_EQ(ValueOf(button), "x");
    EXPECT_FALSE(document.IsModified());
}

TEST_F(TextPanels, WithoutADirectoryOfItsOwnTheSitesIsOffered) {
    const std::string textures = host.GetSite().LibraryPath("textures");
    MakeDirectory(textures);
    host.GetSite().settings.Store("stringbrowser_dir", "textures");
    COpButton& button = ShowString("fileflag 1");
    for (const char* value : {"", "/no/such/directory/x.sgi"}) {
        ValueOf(button) = value;
        QString directory;
        test::WhenDialogComes([&](QDialog& dialog) {
            directory = static_cast<QFileDialog&>(dialog).directory().path();
            dialog.reject();
        });
        QTest::mouseClick(&Button(button, "File..."), Qt::LeftButton);
        EXPECT_EQ(Bytes(directory), textures) << value;
    }
}

TEST_F(TextPanels, ABoxThatGoesWhileAFileIsChosenTakesTheChoiceAlong) {
    const test::TempDir files;
    files.Write("one.sgi", "");
    COpBox& box = Show("input s { string { fileflag 1 } }");
    test::WhenDialogComes([&](QDialog& dialog) {
        desk.DeleteBox(box);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        static_cast<QFileDialog&>(dialog).selectFile(Shown(files / "one.sgi"));
        QMetaObject::invokeMethod(&dialog, "accept");
    });
    QTest::mouseClick(&Button(*box.inputs.at(0), "File..."), Qt::LeftButton);
    EXPECT_THAT(sliders.Frames(), IsEmpty());
}

TEST_F(TextPanels, LineBreaksThatArePastedBecomeBlanks) {
    COpButton& button = ShowString("value x");
    Paste(Value(button), "one\ntwo\r\nthree");
    EXPECT_EQ(ValueOf(button), "one two three");
}

TEST_F(TextPanels, AMegabyteThatIsPastedIsRefusedAndTheFormerTextStands) {
    COpButton& button = ShowString("value before");
    Paste(Value(button), QString(1 << 20, 'x'));
    EXPECT_EQ(ValueOf(button), "before");
    EXPECT_EQ(Value(button).text(), "before");
    EXPECT_FALSE(document.IsModified());
}

TEST_F(TextPanels, ATextThatIsTooLongForAFieldIsShownAndKept) {
    COpBox& box = Show("input s { string { value x } }");
    const std::string text(100000, 'x');
    ValueOf(*box.inputs.at(0)) = text;
    FrameOf(*box.inputs.at(0)).Refresh();
    OneLineField& field = Value(*box.inputs.at(0));
    TypeOver(field, "y");
    EXPECT_EQ(ValueOf(*box.inputs.at(0)), text);
    EXPECT_FALSE(field.toolTip().isEmpty());
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(ValueOf(*box.inputs.at(0)), text);
}

TEST_F(TextPanels, BytesThatAreNoUtf8StayWhatTheyAre) {
    COpButton& button = ShowString("value x");
    ValueOf(button) = "caf\xE9";
    FrameOf(button).Refresh();
    QTest::keyClick(&Value(button), Qt::Key_Return);
    EXPECT_EQ(ValueOf(button), "caf\xE9");
    test::GiveFocus(Value(button));
    QTest::keyClick(&Value(button), Qt::Key_End);
    QTest::keyClick(&Value(button), '!');
    EXPECT_EQ(ValueOf(button), "caf\xE9!");
}

// Two types share the panel.
TEST_F(TextPanels, TheValueOfTheCurrentTypeIsShown) {
    COpBox& box = Show(
        "input g { generic:matrix { value one options { one two } } generic:normal { value up noedit } "
        "float { 0 0 1 0 \"%g\" } }");
    COpButton& button = *box.inputs.at(0);
    const auto valueAt = [&](size_t cast) {
        return static_cast<COpValueGeneric&>(*button.values.at(cast)).value;
    };
    const SliderPanel* panel = FrameOf(button).Panel();
    TypeOver(Value(button), "three");
    EXPECT_EQ(valueAt(0), "three");
    const auto cast = [&](size_t index) {
        desk.m_mouseButton = &button;
        desk.ChooseCast(index);
    };
    cast(1);
    EXPECT_EQ(FrameOf(button).Panel(), panel);
    EXPECT_EQ(Value(button).text(), "up");
    EXPECT_FALSE(Value(button).isEnabled());
    EXPECT_FALSE(Button(button, "Options...").isEnabled());
    cast(2);
    EXPECT_NE(FrameOf(button).Panel(), panel);
    cast(0);
    EXPECT_EQ(FrameOf(button).Panel(), panel);
    EXPECT_EQ(Value(button).text(), "three");
    EXPECT_TRUE(Value(button).isEnabled());
    Choose(button, "two");
    EXPECT_EQ(valueAt(0), "two");
    EXPECT_EQ(valueAt(1), "up");
}

}  // namespace
}  // namespace tavrin

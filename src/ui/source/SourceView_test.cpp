// SPDX-License-Identifier: Apache-2.0
// A source in a real window: what is painted, where mouse and keys lead, what is copied.
#include "ui/source/SourceView.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QScrollBar>
#include <QTest>
#include <cmath>
#include <string>

#include "text/Archive.h"
#include "text/Report.h"
#include "ui/base/Text.h"
#include "ui/source/SourceColors.h"
#include "ui/support/Hands.h"
#include "ui/support/Windows.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

SourceWords SomeWords() {
    Report report;
    CArchive archive = CArchive::FromText(
        "words", "linecomment //\nblockcomment \"/*\" \"*/\"\nnumbers 1\nclass type { float }\n");
    return SourceWords::Read(archive, report).value();
}

std::string Numbered(int lines) {
    std::string text;
    for (int i = 1; i <= lines; ++i) text += "float v" + std::to_string(i) + " = 0.5; // of it\n";
    return text;
}

class SourceViewTest : public testing::Test {
  protected:
    SourceViewTest() { view.resize(500, 300); }

    void Show(const std::string& text) {
        view.Show(SourceText(text, SomeWords()));
        test::ShowActive(view);
        test::GiveFocus(view);
    }
    QPoint At(size_t line, int letter) {
        const int left = view.PlaceOfLine(line).left() + m_left;
        return {left + letter * view.fontMetrics().horizontalAdvance('0') + 1,
                view.PlaceOfLine(line).center().y()};
    }
    void Drag(QPoint from, QPoint to) {
        QTest::mousePress(view.viewport(), Qt::LeftButton, {}, from);
        QTest::mouseMove(view.viewport(), (from + to) / 2);
        QTest::mouseMove(view.viewport(), to);
        QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, to);
    }
    std::string Selected() { return Bytes(view.SelectedText()); }
    QImage Line(size_t line) {
        const QImage seen = view.viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
        const qreal ratio = view.devicePixelRatioF();
        const QRect place = view.PlaceOfLine(line);
        return seen.copy(QRectF(QPointF(place.topLeft()) * ratio, QSizeF(place.size()) * ratio).toRect());
    }
    static bool Has(const QImage& picture, const QColor& color) {
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                if (picture.pixel(x, y) == color.rgb()) return true;
            }
        }
        return false;
    }

    std::vector<size_t> moved;
    std::vector<size_t> chosen;
    SourceView view{
        nullptr,
        {[this](size_t line) { moved.push_back(line); }, [this](size_t line) { chosen.push_back(line); }}};
    // Where the text begins: the caret's place of a click there is the line's first.
    const int m_left = 3 + 5 * view.fontMetrics().horizontalAdvance('0') + 6;
};

TEST_F(SourceViewTest, AClickChoosesItsLineAndADragSelectsAndChoosesNothing) {
    Show(Numbered(50));
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, At(4, 2));
    EXPECT_THAT(chosen, ElementsAre(4U));
    EXPECT_EQ(view.CaretLine(), 4U);
    Drag(At(2, 6), At(3, 5));
    EXPECT_EQ(Selected(), "v2 = 0.5; // of it\nfloat");
    EXPECT_THAT(chosen, ElementsAre(4U));
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::ShiftModifier, At(2, 8));
    EXPECT_EQ(Selected(), "v2");
    EXPECT_THAT(chosen, ElementsAre(4U));
    QTest::mouseClick(view.viewport(), Qt::RightButton, {}, At(1, 2));
    EXPECT_THAT(chosen, ElementsAre(4U));
}

TEST_F(SourceViewTest, AClickBelowTheLastLineChoosesNothing) {
    Show("float x;\n");
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, QPoint(100, 250));
    EXPECT_THAT(chosen, IsEmpty());
    Show("");
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, QPoint(100, 5));
    for (const char* keys : {"Down", "Ctrl+End", "Return", "Ctrl+A", "Ctrl+C"}) test::PressKeys(keys);
    EXPECT_THAT(chosen, IsEmpty());
    EXPECT_EQ(Selected(), "");
}

TEST_F(SourceViewTest, ADoubleClickSelectsAWord) {
    Show("float some_name = 1;\n");
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, At(1, 9));
    EXPECT_EQ(Selected(), "some_name");
}

TEST_F(SourceViewTest, KeysLeadTheCaretAndTheViewFollows) {
    Show(Numbered(200));
    test::PressKeys("Down");
    test::PressKeys("Right");
    test::PressKeys("Shift+End");
    EXPECT_EQ(Selected(), "loat v2 = 0.5; // of it");
    test::PressKeys("Ctrl+End");
    EXPECT_EQ(view.CaretLine(), 200U);
    EXPECT_EQ(view.FirstLineInView() + view.LinesInView() - 1, 200U);
    test::PressKeys("PgUp");
    EXPECT_EQ(view.CaretLine(), 200U - view.LinesInView());
    test::PressKeys("Ctrl+Home");
    EXPECT_EQ(view.FirstLineInView(), 1U);
    test::PressKeys("Left");
    EXPECT_EQ(view.CaretLine(), 1U);
    test::PressKeys("End");
    test::PressKeys("Right");
    EXPECT_EQ(view.CaretLine(), 2U) << "beyond the end of a line";
    test::PressKeys("Left");
    EXPECT_EQ(view.CaretLine(), 1U);
    test::PressKeys("Return");
    EXPECT_THAT(chosen, ElementsAre(1U));
}

TEST_F(SourceViewTest, WhatIsReadStaysInViewWhenLinesComeAndGoAboveIt) {
    Show(Numbered(200));
    view.verticalScrollBar()->setValue(100);
    view.Show(SourceText("a\nb\nc\n" + Numbered(200), SomeWords()));
    EXPECT_EQ(view.FirstLineInView(), 104U);
    view.Show(SourceText(Numbered(200), SomeWords()));
    EXPECT_EQ(view.FirstLineInView(), 101U);
    view.Show(SourceText(Numbered(200) + "more\n", SomeWords()));
    EXPECT_EQ(view.FirstLineInView(), 101U);
    view.Show(SourceText("short\n", SomeWords()));
    EXPECT_EQ(view.FirstLineInView(), 1U);
}

TEST_F(SourceViewTest, LitAndMarkedLinesCanBeSeen) {
    Show(Numbered(20));
    const QImage before = Line(3);
    view.Light({3, 5});
    EXPECT_TRUE(Has(Line(3), LitGround(view.palette())));
    EXPECT_TRUE(Has(Line(5), LitGround(view.palette())));
    EXPECT_FALSE(Has(Line(4), LitGround(view.palette())));
    view.Light({});
    EXPECT_EQ(Line(3), before);
    view.Mark({3});
    EXPECT_NE(Line(3), before);
}

TEST_F(SourceViewTest, LitLinesComeIntoViewUnlessSomeAreThere) {
    Show(Numbered(300));
    view.Light({2, 250});
    view.ShowLit();
    EXPECT_EQ(view.FirstLineInView(), 1U);
    view.Light({150, 250, 251});
    view.ShowLit();
    EXPECT_LE(view.FirstLineInView(), 250U) << "where most of them stand together";
    EXPECT_GT(view.FirstLineInView() + view.LinesInView(), 251U);
    view.Light({});
    view.ShowLit();
    EXPECT_GT(view.FirstLineInView(), 150U);
}

TEST_F(SourceViewTest, PartsHaveTheirColours) {
    const std::string text = "plain\nfloat x\n// float\n/* a\nfloat */\n1.0\n";
    Show(text);
    std::vector<QImage> coloured;
    for (size_t line = 1; line <= 6; ++line) coloured.push_back(Line(line));
    const auto differs = [&](const char* list) {
        Report report;
        CArchive archive = CArchive::FromText("words", list);
        view.Show(SourceText("", {}));
        view.Show(SourceText(text, SourceWords::Read(archive, report).value()));
        std::vector<size_t> lines;
        for (size_t line = 1; line <= 6; ++line) {
            if (Line(line) != coloured[line - 1]) lines.push_back(line);
        }
        return lines;
    };
    EXPECT_THAT(differs(""), ElementsAre(2U, 3U, 4U, 5U, 6U));
    EXPECT_THAT(differs("linecomment //\nblockcomment \"/*\" \"*/\"\nnumbers 1\n"), ElementsAre(2U))
        << "a word within a comment is part of it";
    EXPECT_THAT(differs("linecomment //\nblockcomment \"/*\" \"*/\"\nclass type { float }\n"),
                ElementsAre(6U));
}

TEST_F(SourceViewTest, TextOfAnyBytesIsShownAndCopiedAsItStands) {
    const std::string text = "\tx\n\xFF\x01 \xC3\xBC \xE2\x80\xAE end\n\xF0\x9F\x8E\xA8!\n";
    Show(text);
    view.SelectAll();
    EXPECT_EQ(view.SelectedText() + "\n", Shown(text));
    view.CopySelected();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), view.SelectedText());
    EXPECT_FALSE(view.viewport()->grab().isNull());
}

TEST_F(SourceViewTest, ALineThatIsTooLongToBeShownIsCopiedWhole) {
    const std::string longest(100'000, 'x');
    Show("a\n" + longest + "\nb\n");
    view.SelectAll();
    EXPECT_EQ(Selected(), "a\n" + longest + "\nb");
    test::PressKeys("Ctrl+Home");
    test::PressKeys("Down");
    test::PressKeys("Shift+End");
    EXPECT_EQ(Selected(), longest);
    EXPECT_FALSE(view.viewport()->grab().isNull());
}

double Luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double Contrast(const QColor& one, const QColor& other) {
    const auto [dark, light] = std::minmax({Luminance(one), Luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

// As readers with weak eyes need it: 4.5 to 1 on every ground.
TEST(SourceColors, AreLegibleOnLightAndDarkAndWhereLinesAreLit) {
    for (const auto& [base, text] : {std::pair(QColor(255, 255, 255), QColor(0, 0, 0)),
                                     std::pair(QColor(35, 38, 41), QColor(252, 252, 252)),
                                     std::pair(QColor(0, 0, 0), QColor(230, 230, 230))}) {
        QPalette palette;
        palette.setColor(QPalette::Base, base);
        palette.setColor(QPalette::Text, text);
        EXPECT_GE(Contrast(NumberColor(palette), base), 4.5) << Bytes(base.name());
        for (int kind = 1; kind <= static_cast<int>(SourceClass::kComment); ++kind) {
            const QColor color = SourceFormat(palette, static_cast<SourceClass>(kind)).foreground().color();
            for (const QColor& ground : {base, LitGround(palette), CaretGround(palette)}) {
                EXPECT_GE(Contrast(color, ground), 4.5)
                    << kind << " on " << Bytes(ground.name()) << ": " << Bytes(color.name());
            }
        }
    }
}

}  // namespace
}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
// Types of buttons as the user meets them: chosen in context menus of the whole frame, and what comes of it
// in the picture, the file and the generated code.
#include <QAction>
#include <QApplication>
#include <QMenu>
#include <optional>

#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/support/DeskPointer.h"
#include "ui/support/Hands.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

using test::DeskPointer;
using test::WaitUntil;
using testing::HasSubstr;
using testing::IsEmpty;

class DeskCasts : public test::FrameTest {
  protected:
    DeskCasts() {
        const std::string site = "tavrin/tiny/tavrn.def";
        directory.Write(site, test::ReadFile(directory / site) +
                                  "wordtranslate.add rgb tint\nwordtranslate.add rgb color\n"
                                  "datatype.add\n{\nname rgb\ndeclarehead \"color \"\ndeclaretail ;\n}\n"
                                  "datatype.add\n{\nname matrix\ndeclarehead \"mat4 \"\ndeclaretail ;\n}\n");
        // The first is tied to the second and the result, the second to the third.
        directory.Write(
            "tavrin/tiny/menu/0300.Patterns/0050.Blend",
            "input a { float { 0.5 0 1 0 \"%g\" } rgb { 1 1 1 \"%g\" } generic:matrix { value m } }\n"
            "input b { rgb { 0 0 0 \"%g\" } float { 0.25 0 1 0 \"%g\" } }\n"
            "input c { rgb { 0 0 0 \"%g\" } float { 0 0 1 0 \"%g\" } }\n"
            "input d { string { \"s\" } }\n"
            "output result { float out rgb out generic:matrix out }\n"
            "defs\n{\ncastlock.add a b\ncastlock.add a result\ncastlock.add b c\n}\n"
            "codegen.main-body append\n"
            "result = blend_${TAVRN_Cast_a}_${TAVRN_Cast_b}_${TAVRN_Cast_c}(a, b);\n<<EOT>>\n");
    }

    // Two of them in the middle, the first feeding the input "a" of the second, saved.
    void StartWired() {
        Start();
        Frame().resize(1100, 800);
        AddBoxes(2, "Blend");
        from = std::next(Document().m_boxes.begin())->get();
        to = Document().m_boxes.front().get();
        from->xypos[0] = -120;
        to->xypos[0] = 120;
        for (COpBox* box : {from, to}) box->selected = 0;
        from->outputs.at(0)->Connect(*to->inputs.at(0));
        Frame().Desk().LayoutAll();
        Do(CommandId::kFitToWindow);
        Document().SetModified(false);
        Settle();
        pointer.emplace(Frame());
    }
    // The items of the menu "Casts" of a button, "[x]" before the one that is checked.
    std::string CastsOf(COpBox& box, const std::string& button) {
        QMenu* menu = pointer->OpenMenu(pointer->Of(box, button));
        if (menu == nullptr) return "no menu";
        pointer->Choose(menu, {"Casts"});
        std::string texts;
        for (const QAction* item : QApplication::activePopupWidget()->actions()) {
            EXPECT_TRUE(item->isCheckable() && item->isEnabled());
            texts += (item->isChecked() ? " [x] " : " ") + Bytes(item->text());
        }
        while (QWidget* popup = QApplication::activePopupWidget()) popup->close();
        return texts;
    }
    std::string Code() {
        Do(CommandId::kRenderIt);
        EXPECT_TRUE(WaitUntil([this] { return !ChildRuns(); }));
        return test::ReadFile(WorkDir() + "/codegenfile");
    }

    std::optional<DeskPointer> pointer;
    COpBox* from = nullptr;
    COpBox* to = nullptr;
};

TEST_F(DeskCasts, TheMenuShowsTheTargetsWordsAndChecksTheCurrentOne) {
    StartWired();
    EXPECT_EQ(CastsOf(*from, "a"), " [x] float color matrix");
    EXPECT_EQ(CastsOf(*from, "b"), " [x] color float");
    EXPECT_EQ(CastsOf(*from, "d"), " [x] string");
    EXPECT_EQ(CastsOf(*from, "result"), " [x] float color matrix");
    EXPECT_FALSE(Document().IsModified());
}

TEST_F(DeskCasts, AChoiceSpreadsToTheTiedButtonsAndNoFurther) {
    StartWired();
    pointer->ChooseAt(pointer->Of(*from, "b"), {"Casts", "float"});
    EXPECT_EQ(CastsOf(*from, "b"), " color [x] float");
    EXPECT_EQ(CastsOf(*from, "c"), " color [x] float");
    pointer->ChooseAt(pointer->Of(*from, "a"), {"Casts", "color"});
    EXPECT_EQ(CastsOf(*from, "b"), " [x] color float");
    EXPECT_EQ(CastsOf(*from, "c"), " color [x] float") << "only b is tied to it";
    EXPECT_EQ(CastsOf(*from, "result"), " float [x] color matrix");
    EXPECT_EQ(CastsOf(*to, "a"), " [x] float color matrix") << "a wire changes no cast";
    EXPECT_TRUE(Frame().isWindowModified());
}

TEST_F(DeskCasts, ATiedButtonWithoutTheTypeStaysAsItIsWithoutAWord) {
    StartWired();
    pointer->ChooseAt(pointer->Of(*from, "a"), {"Casts", "matrix"});
    EXPECT_EQ(CastsOf(*from, "b"), " [x] color float");
    EXPECT_EQ(CastsOf(*from, "result"), " float color [x] matrix");
    EXPECT_THAT(test::BoxesShown(), IsEmpty());
}

TEST_F(DeskCasts, TheCodeDeclaresAndNamesWhatWasChosen) {
    StartWired();
    EXPECT_THAT(Code(), HasSubstr("blend_float_color_color("));
    pointer->ChooseAt(pointer->Of(*from, "result"), {"Casts", "matrix"});
    const std::string code = Code();
    EXPECT_THAT(code, HasSubstr("mat4 "));
    EXPECT_THAT(code, HasSubstr("blend_matrix_color_color("));
    EXPECT_THAT(code, HasSubstr("blend_float_color_color("));  // of the other box
}

TEST_F(DeskCasts, AWireIsStippledFromTheChoiceOnUntilTheTypesAgreeAgain) {
    StartWired();
    const auto inkOfWire = [this] {
        const QImage picture = Frame().Desk().Desk().grabFramebuffer();
        int ink = 0;
        const DeskPoint start = ButtonAnchor(ButtonPlace::Of(*from->outputs.at(0)));
        const DeskPoint end = ButtonAnchor(ButtonPlace::Of(*to->inputs.at(0)));
        const QRect area = QRect(pointer->At(start), pointer->At(end)).normalized().adjusted(0, -4, 0, 4);
        for (int y = area.top(); y <= area.bottom(); ++y) {
            for (int x = area.left(); x <= area.right(); ++x) {
                const QColor color = picture.pixelColor(x, y);
                ink += std::abs(color.red() - 153) < 2 && std::abs(color.green() - 51) < 2 ? 1 : 0;
            }
        }
        return ink;
    };
    const int solid = inkOfWire();
    ASSERT_GT(solid, 100);
    pointer->ChooseAt(pointer->Of(*to, "a"), {"Casts", "color"});
    EXPECT_LT(inkOfWire(), solid * 2 / 3);
    EXPECT_GT(inkOfWire(), solid / 3);
    pointer->ChooseAt(pointer->Of(*from, "a"), {"Casts", "color"});  // and with it the result
    EXPECT_EQ(inkOfWire(), solid);
}

TEST_F(DeskCasts, TheChoiceComesBackFromTheFile) {
    StartWired();
    pointer->ChooseAt(pointer->Of(*from, "a"), {"Casts", "matrix"});
    const std::string path = directory / "casts.tvn";
    std::string error;
    ASSERT_TRUE(Document().Save(path, error)) << error;
    pointer->ChooseAt(pointer->Of(*from, "a"), {"Casts", "float"});
    Document().SetModified(false);
    ASSERT_TRUE(Frame().OpenDocumentFile(path));
    Settle();
    for (const auto& box : Document().m_boxes) {
        if (box->wid == 1) {
            EXPECT_EQ(CastsOf(*box, "a"), " float color [x] matrix");
        }
    }
    Document().SetModified(false);
}

}  // namespace
}  // namespace tavrin

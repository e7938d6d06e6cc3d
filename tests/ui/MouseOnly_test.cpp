// SPDX-License-Identifier: Apache-2.0
// A shader made from an empty desk with nothing but the mouse, and rendered.
#include <QImage>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QStyle>
#include <QTest>
#include <set>
#include <stdexcept>

#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/library/OperatorToolBar.h"
#include "ui/sliders/ColorPicker.h"
#include "ui/sliders/ColorWheelView.h"
#include "ui/sliders/SliderPane.h"
#include "ui/sliders/ValueSlider.h"
#include "ui/support/DeskPointer.h"
#include "ui/support/Hands.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

using test::DeskPointer;
using test::SourcePath;
using test::WaitUntil;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr int kWidth = 64;  // of the picture
constexpr int kHeight = 48;

// The program's own library with its renderer.
class MouseOnly : public test::FrameTest {
  protected:
    MouseOnly() {
        environment.Set("TAVRN_DIR", SourcePath("installation"));
        environment.Set("TAVRN_LIB", SourcePath("installation/mray"));
        environment.Set("MRAY_VIEWER", "");
    }
    void StartLarge() {
        Start();
        Frame().resize(1500, 850);
        Settle();
        pointer.emplace(Frame());
        Document().m_renderOptions["MRAY_SIZE"] = std::to_string(kWidth) + "," + std::to_string(kHeight);
    }
    QWidget& Pane() { return Frame().Desk().Desk(); }

    // Operators, which then wait under the mouse.
    void TakeFromMenu(const QString& title, const QString& name) {
        QMenu& menu = *Menu(title);
        QMenuBar& bar = *Frame().menuBar();
        QTest::mouseClick(&bar, Qt::LeftButton, {}, bar.actionGeometry(menu.menuAction()).center());
        ASSERT_TRUE(WaitUntil([&] { return menu.isVisible(); })) << Bytes(title);
        for (QAction* item : menu.actions()) {
            if (item->text().remove('&') != name) continue;
            QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(item).center());
            Settle();
            return;
        }
        throw std::logic_error("no such operator");
    }
    void TakeFromToolBar(const QString& name) {
        for (auto* button : Frame().OperatorBar().findChildren<QPushButton*>("operator")) {
            if (button->text() != name) continue;
            QTest::mouseClick(Frame().windowHandle(), Qt::LeftButton, {},
                              button->mapTo(&Frame(), button->rect().center()));
            return;
        }
        throw std::logic_error("no such button");
    }
    // Into a field of a grid, from the upper left; the box.
    COpBox& Drop(int column, int row) {
        const QPoint at(Pane().width() * (2 * column + 1) / (2 * kColumns),
                        Pane().height() * (2 * row + 1) / (2 * kRows));
        EXPECT_THAT(Desk().m_pendingBoxes, SizeIs(1));
        pointer->Click(at);
        EXPECT_THAT(Desk().m_pendingBoxes, IsEmpty());
        return *Document().m_boxes.front();
    }

    QImage Render(int number) {
        QTest::keyClick(&Frame(), Qt::Key_F1);
        EXPECT_TRUE(WaitUntil([this] { return !ChildRuns(); }));
        Settle();
        const std::string name = Frame().Work().session.ShaderName();
        const std::string path = WorkDir() + "/" + std::to_string(number) + "/" + name + ".png";
        QImage picture(Shown(path));
        EXPECT_EQ(picture.size(), QSize(kWidth, kHeight)) << path << "\n" << Log();
        return picture.convertToFormat(QImage::Format_RGB32);
    }

    // What was written of the last render for the filter script.
    std::string Code() { return test::ReadFile(WorkDir() + "/codegenfile"); }
    static size_t Colors(const QImage& picture) {
        std::set<QRgb> colors;
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x) colors.insert(picture.pixel(x, y));
        return colors.size();
    }
    // How many pixels are clearly not grey.
    static int Tinted(const QImage& picture) {
        int tinted = 0;
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x) tinted += picture.pixelColor(x, y).hsvSaturation() > 60;
        return tinted;
    }
    // Something of a frame in the slider column.
    template <typename Control>
    Control& InFrame(const COpButton& button, const QString& name) {
        for (QWidget* widget : Frame().Sliders().BringIntoView(button)->findChildren<QWidget*>()) {
            auto* control = dynamic_cast<Control*>(widget);
            if (control != nullptr &&
                (control->accessibleName() == name || control->property("text") == name) &&
                control->isVisible())
                return *control;
        }
        throw std::logic_error("no control " + Bytes(name));
    }
    // By its thumb, to a position.
    void Slide(ValueSlider& slider, int position) {
        const auto thumbAt = [&](int at) {
            const int length = slider.style()->pixelMetric(QStyle::PM_SliderLength, nullptr, &slider);
            const int x = QStyle::sliderPositionFromValue(0, 100, at, slider.width() - length) + length / 2;
            return slider.mapTo(&Frame(), QPoint(x, slider.height() / 2));
        };
        QWindow* window = Frame().windowHandle();
        const QPoint from = thumbAt(slider.sliderPosition());
        QTest::mousePress(window, Qt::LeftButton, {}, from);
        QTest::mouseMove(window, (from + thumbAt(position)) / 2);
        QTest::mouseMove(window, thumbAt(position));
        QTest::mouseRelease(window, Qt::LeftButton, {}, thumbAt(position));
    }
    static std::vector<QPoint> Corners() { return {{0, 0}, {kWidth - 1, 0}}; }

    void BuildNetwork();
    std::optional<DeskPointer> pointer;
    COpBox* surface = nullptr;
    COpBox* mix = nullptr;

  private:
    static constexpr int kColumns = 5;
    static constexpr int kRows = 3;
};

void MouseOnly::BuildNetwork() {
    TakeFromToolBar("Noise");
    COpBox& noise = Drop(0, 0);
    TakeFromMenu("Maths", "Number");
    COpBox& number = Drop(0, 1);
    TakeFromMenu("Colour", "Tint");
    COpBox& even = Drop(0, 2);
    TakeFromMenu("Colour", "Tint");
    COpBox& odd = Drop(1, 2);
    TakeFromToolBar("Ramp");
    COpBox& ramp = Drop(1, 0);
    TakeFromMenu("Patterns", "Checker");
    COpBox& checker = Drop(2, 2);
    TakeFromToolBar("Mix");
    mix = &Drop(2, 0);
    TakeFromMenu("Colour", "Layers");
    COpBox& layers = Drop(2, 1);
    TakeFromMenu("Shading", "Matte");
    COpBox& matte = Drop(3, 1);
    TakeFromToolBar("Surface");
    surface = &Drop(4, 1);

    DeskPointer& hand = *pointer;
    hand.WireByDrag(hand.Of(number, "result"), hand.Of(noise, "detail"));
    hand.WireByClicks(hand.Of(noise, "result"), hand.Of(ramp, "value"));
    hand.WireByDrag(hand.Of(ramp, "result"), hand.Of(*mix, "upper"));
    hand.WireByClicks(hand.Of(even, "result"), hand.Of(checker, "even"));
    hand.WireByDrag(hand.Of(checker, "odd"), hand.Of(odd, "result"));  // from the input back
    hand.WireByClicks(hand.Of(*mix, "lower"), hand.Of(checker, "result"));
    hand.WireByDrag(hand.Of(layers, "result"), hand.Of(matte, "colour"));
    hand.WireByClicks(hand.Of(matte, "result"), hand.Of(*surface, "colour"));
    // The colour lies on the second layer, which the arrow below the first makes.
    hand.WireToArrow(hand.Of(*mix, "result"), *layers.FindButton("layer1"), false);
    EXPECT_THAT(layers.inputs, SizeIs(3));
    EXPECT_EQ(layers.inputs.at(1)->connections.First(), mix->FindButton("result"));
}

TEST_F(MouseOnly, TenBoxesAreWiredAndRendered) {
    StartLarge();
    BuildNetwork();
    ASSERT_THAT(Document().m_boxes, SizeIs(10));
    EXPECT_THAT(Document().OrderBoxes(), SizeIs(10));
    size_t inputs = 0;
    for (const auto& box : Document().m_boxes) inputs += box->inputs.size();
    EXPECT_EQ(Document().CollectUnconnectedInputs().size() + 9, inputs);

    const QImage picture = Render(1);
    EXPECT_GT(Colors(picture), 100U);
    EXPECT_GT(Tinted(picture), 100);

    // As numbers what is mixed is grey, which its menu changes for both of its sides; the background is not.
    pointer->ChooseAt(pointer->Of(*mix, "result"), {"Casts", "float"});
    for (const char* side : {"lower", "upper"}) EXPECT_EQ(mix->FindButton(side)->CurrentType(), "float");
    EXPECT_THAT(Code(), HasSubstr("vec3 Mix_7_result;"));
    const QImage numbers = Render(2);
    EXPECT_THAT(Code(), HasSubstr("float Mix_7_result;"));
    EXPECT_GT(Colors(numbers), 20U);
    EXPECT_LT(Tinted(numbers), Tinted(picture) / 2);
    for (const QPoint corner : Corners()) EXPECT_EQ(numbers.pixel(corner), picture.pixel(corner));

    // Without its last wire the surface shows its own colour; what stands behind it stays. That colour is an
    // argument of the shader now, which has the same value.
    pointer->Click(pointer->OfWireInto(*surface->FindButton("colour")));
    ASSERT_THAT(Desk().m_selectedConnects, SizeIs(1));
    test::ChooseInMenu(Frame(), "Edit", Action(CommandId::kDelete));
    EXPECT_TRUE(surface->FindButton("colour")->connections.Empty());
    pointer->ChooseAt(pointer->Of(*surface, "colour"), {"Argument"});
    const QImage grey = Render(3);
    EXPECT_THAT(Code(), HasSubstr("mrAs_vec3(Surface_10_colour)"));
    const QPoint middle(kWidth / 2, kHeight / 2);
    EXPECT_NE(grey.pixel(middle), picture.pixel(middle));
    EXPECT_NE(grey.pixel(middle), numbers.pixel(middle));
    const QColor seen = grey.pixelColor(middle);
    EXPECT_NEAR(seen.red(), seen.green(), 2);
    EXPECT_NEAR(seen.red(), seen.blue(), 2);
    for (const QPoint corner : Corners()) EXPECT_EQ(grey.pixel(corner), picture.pixel(corner));
}

TEST_F(MouseOnly, ValuesAreTunedAndAColourIsPickedAndSeenInThePicture) {
    StartLarge();
    TakeFromMenu("Colour", "Tint");
    COpBox& tint = Drop(1, 1);
    TakeFromMenu("Shading", "Glow");
    COpBox& glow = Drop(2, 1);
    TakeFromToolBar("Surface");
    COpBox& end = Drop(3, 1);
    pointer->WireByDrag(pointer->Of(tint, "result"), pointer->Of(glow, "colour"));
    pointer->WireByDrag(pointer->Of(glow, "result"), pointer->Of(end, "colour"));
    const QPoint middle(kWidth / 2, kHeight / 2);
    const QColor red = Render(1).pixelColor(middle);
    EXPECT_GT(red.red(), red.green() + 40);

    pointer->Click(pointer->TitleOf(tint));
    const COpButton& colour = *tint.FindButton("colour");
    Slide(InFrame<ValueSlider>(colour, "Red"), 0);
    Slide(InFrame<ValueSlider>(colour, "Green"), 70);
    const QColor green = Render(2).pixelColor(middle);
    EXPECT_GT(green.green(), green.red() + 40);

    auto& open = InFrame<QPushButton>(colour, "HSV");
    QTest::mouseClick(Frame().windowHandle(), Qt::LeftButton, {}, open.mapTo(&Frame(), open.rect().center()));
    CColorPicker* picker = nullptr;
    ASSERT_TRUE(WaitUntil([&] {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (picker == nullptr) picker = dynamic_cast<CColorPicker*>(window);
        }
        return picker != nullptr && picker->IsOpen() && picker->windowHandle()->isExposed();
    }));
    CColorWheel* wheel = nullptr;
    for (QWidget* widget : picker->findChildren<QWidget*>()) {
        if (wheel == nullptr) wheel = dynamic_cast<CColorWheel*>(widget);
    }
    ASSERT_NE(wheel, nullptr);
    // Blue lies at two thirds of the way round the ring, its pure colour at the triangle's right vertex.
    const int size = wheel->width();
    const auto press = [&](double x, double y) {
        const QPoint at = wheel->mapTo(picker, QPoint(int(x * size), int(y * size)));
        QTest::mouseClick(picker->windowHandle(), Qt::LeftButton, {}, at);
    };
    press(0.5 - 0.4 * 0.866, 0.5 + 0.4 * 0.5);
    press(0.79, 0.5);
    const QColor blue = Render(3).pixelColor(middle);
    EXPECT_GT(blue.blue(), blue.red() + 40);
    EXPECT_GT(blue.blue(), blue.green() + 40);

    pointer->Click(pointer->TitleOf(glow));
    Slide(InFrame<ValueSlider>(*glow.FindButton("strength"), "Value"), 0);
    const QColor dark = Render(4).pixelColor(middle);
    EXPECT_LT(dark.lightness(), 30);
}

}  // namespace
}  // namespace tavrin

// A shader made from an empty desk with nothing but the mouse, and rendered.
#include <QImage>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTest>
#include <set>
#include <stdexcept>

#include "ui/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/library/OperatorToolBar.h"
#include "ui/support/Hands.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

using test::SourcePath;
using test::WaitUntil;
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
        MoveTo(at, Qt::NoButton);
        Click(at);
        EXPECT_THAT(Desk().m_pendingBoxes, IsEmpty());
        return *Document().m_boxes.front();
    }

    void MoveTo(QPoint at, Qt::MouseButton held) {
        QMouseEvent move(QEvent::MouseMove, at, Pane().mapToGlobal(at), Qt::NoButton, held, {});
        QApplication::sendEvent(&Pane(), &move);
    }
    void Click(QPoint at) {
        MoveTo(at, Qt::NoButton);
        QTest::mouseClick(&Pane(), Qt::LeftButton, {}, at);
        Settle();
    }
    QPoint At(DeskPoint point) {
        const WindowPoint at = Frame().Desk().View().ToWindow(point);
        return {static_cast<int>(at.x), static_cast<int>(at.y)};
    }
    // The place of a button that is seen and not covered.
    QPoint Of(COpBox& box, const std::string& name) {
        const COpButton* button = box.FindButton(name);
        if (button == nullptr) throw std::logic_error(box.filename + " has no " + name);
        const QPoint at = At(ButtonRect(ButtonPlace::Of(*button)).Middle());
        EXPECT_TRUE(Pane().rect().contains(at)) << box.filename << " " << name;
        return at;
    }
    void WireByDrag(QPoint from, QPoint to) {
        MoveTo(from, Qt::NoButton);
        QTest::mousePress(&Pane(), Qt::LeftButton, {}, from);
        MoveTo((from + to) / 2, Qt::LeftButton);
        MoveTo(to, Qt::LeftButton);
        QTest::mouseRelease(&Pane(), Qt::LeftButton, {}, to);
        Settle();
    }
    void WireByClicks(QPoint from, QPoint to) {
        Click(from);
        Click(to);
    }

    // In the middle of the wire's middle piece.
    void ClickWireInto(const COpButton& input) {
        const Polyline wire = ConnectionPolyline(ButtonPlace::Of(*input.connections.First()),
                                                 ButtonPlace::Of(input), Document().linetype == 1);
        const DeskPoint from = wire.points[wire.count / 2 - 1];
        const DeskPoint to = wire.points[wire.count / 2];
        Click(At({(from.x + to.x) / 2, (from.y + to.y) / 2}));
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

    void BuildNetwork();
    COpBox* surface = nullptr;

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
    COpBox& mix = Drop(2, 0);
    TakeFromMenu("Colour", "Layers");
    COpBox& layers = Drop(2, 1);
    TakeFromMenu("Shading", "Matte");
    COpBox& matte = Drop(3, 1);
    TakeFromToolBar("Surface");
    surface = &Drop(4, 1);

    WireByDrag(Of(number, "result"), Of(noise, "detail"));
    WireByClicks(Of(noise, "result"), Of(ramp, "value"));
    WireByDrag(Of(ramp, "result"), Of(mix, "upper"));
    WireByClicks(Of(even, "result"), Of(checker, "even"));
    WireByDrag(Of(checker, "odd"), Of(odd, "result"));  // from the input back
    WireByClicks(Of(mix, "lower"), Of(checker, "result"));
    WireByDrag(Of(layers, "result"), Of(matte, "colour"));
    WireByClicks(Of(matte, "result"), Of(*surface, "colour"));

    // The colour lies on the second layer, which the arrow below the first makes.
    const QPoint first = Of(layers, "layer1");
    MoveTo(Of(mix, "result"), Qt::NoButton);
    QTest::mousePress(&Pane(), Qt::LeftButton, {}, Of(mix, "result"));
    MoveTo(first, Qt::LeftButton);
    Settle();  // a paint brings the arrows up
    const QPoint arrow = At(GrowArrowRect(ButtonPlace::Of(*layers.FindButton("layer1")), false).Middle());
    MoveTo(arrow, Qt::LeftButton);
    QTest::mouseRelease(&Pane(), Qt::LeftButton, {}, arrow);
    Settle();
    EXPECT_THAT(layers.inputs, SizeIs(3));
    EXPECT_EQ(layers.inputs.at(1)->connections.First(), mix.FindButton("result"));
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
    std::set<QRgb> colors;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) colors.insert(picture.pixel(x, y));
    }
    EXPECT_GT(colors.size(), 100U);

    // Without its last wire the surface shows its own colour; what stands behind it stays.
    ClickWireInto(*surface->FindButton("colour"));
    ASSERT_THAT(Desk().m_selectedConnects, SizeIs(1));
    test::ChooseInMenu(Frame(), "Edit", Action(CommandId::kDelete));
    EXPECT_TRUE(surface->FindButton("colour")->connections.Empty());
    const QImage grey = Render(2);
    const QPoint middle(kWidth / 2, kHeight / 2);
    EXPECT_NE(grey.pixel(middle), picture.pixel(middle));
    const QColor seen = grey.pixelColor(middle);
    EXPECT_NEAR(seen.red(), seen.green(), 2);
    EXPECT_NEAR(seen.red(), seen.blue(), 2);
    for (const QPoint corner : {QPoint(0, 0), QPoint(kWidth - 1, 0)})
        EXPECT_EQ(grey.pixel(corner), picture.pixel(corner)) << corner.x();
}

}  // namespace
}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
// The road of docs/first-steps.md, by a user's hands: from an empty desk to hammered copper in the picture.
#include <QApplication>
#include <QCursor>
#include <QDialog>
#include <QImage>
#include <QLineEdit>
#include <QListView>
#include <QStyle>
#include <QTest>
#include <set>
#include <stdexcept>

#include "ui/base/Text.h"
#include "ui/commands/SearchWork.h"
#include "ui/desk/DeskPane.h"
#include "ui/frame/StatusBox.h"
#include "ui/search/SearchPopup.h"
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
using testing::SizeIs;

constexpr int kWidth = 64;  // of the picture
constexpr int kHeight = 48;

// The program's own library, and what the hand does counted.
class FirstSteps : public test::FrameTest {
  protected:
    FirstSteps() {
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
        test::GiveFocus(Frame().Desk());
        ASSERT_TRUE(WaitUntil([this] {
            return Frame().Search().Index() != nullptr && Frame().Search().Index()->Unread() == 0;
        }));
    }
    QWidget& Pane() { return Frame().Desk().Desk(); }
    bool SaysHowToBegin() { return Pane().findChild<QWidget*>("welcome")->isVisible(); }
    bool SearchIsOpen() {
        const SearchPopup* popup = Frame().Search().Popup();
        return popup != nullptr && popup->isVisible();
    }
    void PointAt(QPoint at) {
        QCursor::setPos(Pane().mapToGlobal(at));
        ASSERT_TRUE(WaitUntil([&] { return QCursor::pos() == Pane().mapToGlobal(at); }));
    }
    void Type(const QString& text) {
        for (const QChar letter : text) QTest::keyClick(Frame().windowHandle(), letter.toLatin1());
        m_keys += int(text.size());
    }
    void Press(const QString& key) {
        test::PressKeys(key);
        ++m_keys;
        Settle();
    }
    // Chooses the first row, which is that operator; the box of it.
    COpBox& Take(const char* name) {
        EXPECT_TRUE(WaitUntil([this] { return SearchIsOpen(); }));
        const auto& list = *Frame().Search().Popup()->findChild<QListView*>("list");
        EXPECT_EQ(Bytes(list.currentIndex().data().toString()), name);
        Press("Return");
        EXPECT_FALSE(SearchIsOpen());
        COpBox* newest = nullptr;
        for (const auto& box : Document().m_boxes) {
            if (newest == nullptr || box->wid > newest->wid) newest = box.get();
        }
        if (newest == nullptr || newest->filename != name) throw std::logic_error("no new box");
        return *newest;
    }
    // A wire from the button to the empty desk.
    void PullOut(const COpButton& button, QPoint to) {
        PointAt(to);
        pointer->WireByDrag(pointer->Of(button), to);
        ++m_drags;
    }
    template <typename Control>
    Control& InFrame(const COpButton& button, const QString& name) {
        for (QWidget* widget : Frame().Sliders().BringIntoView(button)->findChildren<QWidget*>()) {
            auto* control = dynamic_cast<Control*>(widget);
            if (control != nullptr && control->accessibleName() == name && control->isVisible())
                return *control;
        }
        throw std::logic_error("no control " + Bytes(name));
    }
    // By its thumb, to a position of a hundred.
    void Slide(ValueSlider& slider, int position) {
        const auto thumbAt = [&](int at) {
            const int length = slider.style()->pixelMetric(QStyle::PM_SliderLength, nullptr, &slider);
            const int x = QStyle::sliderPositionFromValue(0, 100, at, slider.width() - length) + length / 2;
            return slider.mapTo(&Frame(), QPoint(x, slider.height() / 2));
        };
        QWindow* window = Frame().windowHandle();
        QTest::mousePress(window, Qt::LeftButton, {}, thumbAt(slider.sliderPosition()));
        QTest::mouseMove(window, thumbAt((slider.sliderPosition() + position) / 2));
        QTest::mouseMove(window, thumbAt(position));
        QTest::mouseRelease(window, Qt::LeftButton, {}, thumbAt(position));
        ++m_drags;
    }
    QImage Render(int number) {
        Press("F1");
        EXPECT_TRUE(WaitUntil([this] { return !ChildRuns(); }));
        Settle();
        const std::string name = Frame().Work().session.ShaderName();
        const std::string path = WorkDir() + "/" + std::to_string(number) + "/" + name + ".png";
        QImage picture(Shown(path));
        EXPECT_EQ(picture.size(), QSize(kWidth, kHeight)) << path << "\n" << Log();
        return picture.convertToFormat(QImage::Format_RGB32);
    }
    // How many pixels are of the colour of copper: clearly red, less green, still less blue.
    static int Copper(const QImage& picture) {
        int count = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                const QColor seen = picture.pixelColor(x, y);
                count += seen.red() > seen.green() + 15 && seen.green() > seen.blue() + 5;
            }
        }
        return count;
    }
    static int Differing(const QImage& one, const QImage& other) {
        int count = 0;
        for (int y = 0; y < one.height(); ++y)
            for (int x = 0; x < one.width(); ++x) count += one.pixel(x, y) != other.pixel(x, y);
        return count;
    }

    std::optional<DeskPointer> pointer;
    int m_keys = 0;
    int m_clicks = 0;
    int m_drags = 0;
};

TEST_F(FirstSteps, LeadFromAnEmptyDeskToHammeredCopper) {
    StartLarge();
    ASSERT_TRUE(WaitUntil([this] { return SaysHowToBegin(); }));
    const QPoint middle = Pane().rect().center();

    // Copper, by a word that is not in the name of its operator.
    PointAt(middle - QPoint(100, 0));
    Type("copper");
    COpBox& metal = Take("Metal");
    EXPECT_TRUE(WaitUntil([this] { return !SaysHowToBegin(); }));
    // What ends a network, pulled out of what it is to show.
    PullOut(*metal.outputs.at(0), middle + QPoint(200, 0));
    Type("su");
    COpBox& surface = Take("Surface");
    EXPECT_EQ(surface.FindButton("colour")->connections.First(), metal.outputs.at(0).get());
    const QImage plain = Render(1);
    EXPECT_GT(Copper(plain), 200);
    EXPECT_LE(m_keys, 11);
    EXPECT_EQ(m_drags, 1);

    // Dents, from the input for the normal back.
    PullOut(*metal.FindButton("normal"), middle - QPoint(350, 60));
    Type("bum");
    COpBox& bump = Take("Bump");
    EXPECT_EQ(metal.FindButton("normal")->connections.First(), bump.outputs.at(0).get());
    PullOut(*bump.FindButton("height"), middle - QPoint(550, 60));
    Type("cel");
    COpBox& cells = Take("Cells");
    EXPECT_FALSE(bump.FindButton("height")->connections.Empty());
    ASSERT_THAT(Document().m_boxes, SizeIs(4));
    pointer->WireByDrag(pointer->Of(cells, "middle"), pointer->Of(bump, "height"));
    ++m_drags;
    EXPECT_EQ(bump.FindButton("height")->connections.First(), cells.FindButton("middle"));
    const QImage dented = Render(2);
    EXPECT_GT(Differing(plain, dented), 200);
    EXPECT_GT(Copper(dented), 200);

    // A value by its slider.
    pointer->Click(pointer->TitleOf(metal));
    ++m_clicks;
    Slide(InFrame<ValueSlider>(*metal.FindButton("roughness"), "Value"), 60);
    EXPECT_GT(Differing(dented, Render(3)), 200);

    EXPECT_LE(m_keys, 22);
    EXPECT_EQ(m_drags, 5);
    EXPECT_EQ(m_clicks, 1);
}

// A black ball explains nothing.
TEST_F(FirstSteps, WithoutASurfaceTheRenderSaysWhyItIsBlack) {
    StartLarge();
    PointAt(Pane().rect().center());
    Type("noise");
    COpBox& noise = Take("Noise");
    const QImage black = Render(1);
    EXPECT_LT(qGray(black.pixel(kWidth / 2, kHeight / 2)), 5);
    EXPECT_THAT(Log(),
                testing::HasSubstr("WARNING: no box feeds the output: the picture will be black; add a "
                                   "Surface box and wire the network to it"));
    EXPECT_THAT(Bytes(Frame().StatusBox().Activity()),
                testing::StartsWith("Rendered Untitled (black, see the log [F8]) in "));

    PullOut(*noise.outputs.at(0), Pane().rect().center() + QPoint(250, 0));
    Type("su");
    Take("Surface");
    Do(CommandId::kClearLog);
    EXPECT_GT(qGray(Render(2).pixel(kWidth / 2, kHeight / 2)), 5);
    EXPECT_THAT(Log(), testing::Not(testing::HasSubstr("WARNING")));
    EXPECT_THAT(Bytes(Frame().StatusBox().Activity()), testing::StartsWith("Rendered Untitled in "));
}

TEST_F(FirstSteps, LeadFromTheLinkOfTheEmptyDeskToAnExamplesPicture) {
    StartLarge();
    ASSERT_TRUE(WaitUntil([this] { return SaysHowToBegin(); }));
    test::WhenDialogComes([](QDialog& dialog) {
        auto& list = *dialog.findChild<QListView*>("list");
        for (int row = 0; row < list.model()->rowCount(); ++row) {
            const QModelIndex tile = list.model()->index(row, 0);
            if (tile.data().toString() != "Copper") continue;
            QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualRect(tile).center());
            return;
        }
        ADD_FAILURE() << "no copper";
        dialog.reject();
    });
    test::ChooseInMenu(Frame(), "File", Action(CommandId::kExamples));
    Settle();
    EXPECT_EQ(Bytes(Frame().windowTitle()), "copper.tvn [surface][*]");
    EXPECT_EQ(Document().Path(), "");
    Document().m_renderOptions["MRAY_SIZE"] = std::to_string(kWidth) + "," + std::to_string(kHeight);
    EXPECT_GT(Copper(Render(1)), 100);
}

}  // namespace
}  // namespace tavrin

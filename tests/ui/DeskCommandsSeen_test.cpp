// SPDX-License-Identifier: Apache-2.0
// What each command changes in the picture of the desk, by each of its ways; that the desk is painted anew by
// itself; and that a command which switches something switches it back.
#include "ui/support/CommandBench.h"
#include "ui/support/DeskPointer.h"

namespace tavrin {
namespace {

using test::Bench;
using testing::Eq;
using testing::Gt;
using testing::Ne;
using Id = CommandId;

constexpr const char* kLink =
    "iconimg \"tiny/link.sgi\"\nicontext \"link\"\n"
    "input in { float { 0 0 1 0 \"%g\" } }\noutput out { float out }\n"
    "codegen.main-body append\nout = f(in);\n<<EOT>>\n";

// A slanted wire from the first box to the second runs under the third, whose icon is a red square, as those
// of the others are. Nothing is selected.
class SeenDesk : public Bench {
  public:
    SeenDesk() {
        directory.Write("tavrin/tiny/menu/0300.Patterns/0050.Link", kLink);
        directory.Write("tavrin/tiny/link.sgi",
                        test::SgiTestFile::Plain(12, 10, 3, {255, 0, 0, 255}).Bytes());
    }
    void StartWired() {
        Start();
        AddBoxes(3, "Link");
        for (int place = 0; place < 3; ++place) {
            COpBox& box = Box(place);
            box.xypos[0] = place == 2 ? 0.0F : place == 1 ? 180.0F : -180.0F;
            box.xypos[1] = place == 2 ? 0.0F : place == 1 ? -120.0F : 120.0F;
            box.selected = 0;
        }
        Box(0).outputs.at(0)->Connect(*Box(1).inputs.at(0));
        Document().showiconimages = Document().showvarnames = Document().drawlinesoverboxes = 0;
        Document().linetype = 0;
        Frame().Desk().LayoutAll();
        Do(Id::kFitToWindow);
        m_path = directory.Write("wired.tvn", Document().Store());
        Document().SetModified(false);
        Settle();
    }
    // As it was at the start.
    void OpenAgain() {
        Document().SetModified(false);
        ASSERT_TRUE(Frame().OpenDocumentFile(m_path));
        Settle();
    }
    // By their numbers, from 0.
    COpBox& Box(int place) {
        for (const auto& box : Document().m_boxes) {
            if (box->wid == place + 1) return *box;
        }
        throw std::logic_error("no such box");
    }
    QPoint At(DeskPoint point) {
        const WindowPoint at = Frame().Desk().View().ToWindow(point);
        return {static_cast<int>(at.x), static_cast<int>(at.y)};
    }
    void Look() { m_picture = DeskPicture(); }
    const QImage& Picture() const { return m_picture; }
    // How many pixels of a rectangle of the desk are of the colour, with a little play.
    int Count(const DeskRect& rect, QColor color) {
        int count = 0;
        const QRect area(At({rect.left, rect.Top()}), At({rect.Right(), rect.bottom}));
        for (int y = area.top(); y <= area.bottom(); ++y) {
            for (int x = area.left(); x <= area.right(); ++x) {
                if (!m_picture.valid(x, y)) continue;
                const QColor seen = m_picture.pixelColor(x, y);
                count += std::abs(seen.red() - color.red()) < 3 &&
                         std::abs(seen.green() - color.green()) < 3 &&
                         std::abs(seen.blue() - color.blue()) < 3;
            }
        }
        return count;
    }
    static DeskRect Round(DeskPoint at, float radius) { return DeskRect{at.x, at.y, 0, 0}.GrownBy(radius); }
    DeskPoint StartOfWire() { return ButtonAnchor(ButtonPlace::Of(*Box(0).outputs.at(0))); }
    DeskPoint EndOfWire() { return ButtonAnchor(ButtonPlace::Of(*Box(1).inputs.at(0))); }

  private:
    std::string m_path;
    QImage m_picture;
};

const QColor kWire(153, 51, 51);
const QColor kVeil(102, 127, 127);
const QColor kRed(255, 0, 0);
const QColor kBlack(0, 0, 0);

struct Sight {
    const char* name;
    CommandId id;
    const char* menu;
    const char* keys;  // joined by blanks
    bool switches;     // the second time it goes back
    void (*setUpOnce)(SeenDesk&);
    void (*setUp)(SeenDesk&);   // for each way
    int (*measure)(SeenDesk&);  // of the picture that was looked at last
    testing::Matcher<int> before;
    testing::Matcher<int> after;
};

int Zoomed(SeenDesk& t) { return static_cast<int>(std::lround(t.Document().zoomFactor * 100)); }
int OutlineOfFirst(SeenDesk& t) {
    const DeskRect box = BoxRect(t.Box(0));
    return t.Count({box.left - 3, box.bottom, 2, box.height}, kBlack);
}
int AllRed(SeenDesk& t) { return t.Count(t.Frame().Desk().View().Visible(), kRed); }
int AllWire(SeenDesk& t) { return t.Count(t.Frame().Desk().View().Visible(), kWire); }

const std::vector<Sight>& Sights() {
    static const std::vector<Sight> sights = {
        {"DisplayIcons", Id::kDisplayIcons, "Options", "", true, nullptr, nullptr, AllRed, Eq(0), Gt(300)},
        {"TraceLines", Id::kStraightTraceLines, "Options", "Ctrl+T", true, nullptr, nullptr,
         [](SeenDesk& t) {  // the corner that only a traced wire has
             return t.Count(SeenDesk::Round({t.EndOfWire().x - 8, t.EndOfWire().y + 40}, 4), kWire);
         },
         Eq(0), Gt(10)},
        {"LinesOverBoxes", Id::kLinesOverBoxes, "Options", "", true, nullptr, nullptr,
         [](SeenDesk& t) { return t.Count(PanelRect(t.Box(2)), kWire); }, testing::Lt(20), Gt(50)},
        {"ShowVarnames", Id::kShowVarnames, "Options", "", true, nullptr, nullptr,
         [](SeenDesk& t) {
             const DeskPoint start = t.StartOfWire();
             return t.Count({start.x + 4, start.y + 4, 60, 12}, kWire);
         },
         Eq(0), Gt(20)},
        {"Lock", Id::kLockDesk, "Options", "Ctrl+L", true, nullptr, nullptr,
         [](SeenDesk& t) { return t.Count(t.Frame().Desk().View().Visible(), kVeil); }, Eq(0), Gt(10000)},
        {"ScrollBars", Id::kScrollBars, "Options", "", true, nullptr, nullptr,
         [](SeenDesk& t) { return t.Frame().Desk().width() - t.Picture().width(); }, Gt(0), Eq(0)},
        {"ShowWallpaper", Id::kShowWallpaper, "Options", "", true, [](SeenDesk& t) { t.SetRedWallpaper(); },
         nullptr, AllRed, Gt(100), Eq(0)},
        {"TileWallpaper", Id::kTileWallpaper, "Options", "", true, [](SeenDesk& t) { t.SetRedWallpaper(); },
         nullptr, AllRed, testing::Lt(60 * 40 + 1), Gt(60 * 40 * 4)},
        {"SelectAll", Id::kSelectAllBoxes, "Edit", "Ctrl+A", false, nullptr, nullptr, OutlineOfFirst, Eq(0),
         Gt(20)},
        {"UnselectAll", Id::kUnselectAllBoxes, "Edit", "", false, nullptr,
         [](SeenDesk& t) { t.Desk().SelectAllBoxes(); }, OutlineOfFirst, Gt(20), Eq(0)},
        {"Cut", Id::kCut, "Edit", "Ctrl+X Shift+Delete", false, nullptr,
         [](SeenDesk& t) { t.Desk().SelectAllBoxes(); }, AllWire, Gt(100), Eq(0)},
        {"DeleteALine", Id::kDelete, "Edit", "Delete", false, nullptr,
         [](SeenDesk& t) {
             const DeskPoint from = t.StartOfWire();
             const DeskPoint to = t.EndOfWire();
             test::DeskPointer(t.Frame()).Click(
                 t.At({from.x + (to.x - from.x) / 4, from.y + (to.y - from.y) / 4}));
         },
         [](SeenDesk& t) { return static_cast<int>(t.Box(1).inputs.at(0)->connections.Size()); }, Eq(1),
         Eq(0)},
        {"ZoomIn", Id::kZoomIn, "View", "Up", false, nullptr, nullptr, Zoomed, Eq(100), Eq(110)},
        {"ZoomOut", Id::kZoomOut, "View", "Down", false, nullptr, nullptr, Zoomed, Eq(100), Eq(91)},
        {"ZoomReset", Id::kZoomReset, "View", "Escape", false, nullptr,
         [](SeenDesk& t) { t.Do(Id::kZoomIn); }, Zoomed, Eq(110), Eq(100)},
        {"FitToWindow", Id::kFitToWindow, "View", "Ctrl+F", false, nullptr,
         [](SeenDesk& t) {
             t.Document().offset[0] += 3000;
             t.Frame().Desk().Repaint();
         },
         AllWire, Eq(0), Gt(100)},
    };
    return sights;
}

// Paints that the desk was asked for by itself, without a test that grabs it.
class PaintCounter : public QObject {
  public:
    explicit PaintCounter(QWidget& widget) { widget.installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) ++m_count;
        return false;
    }
    int Count() const { return m_count; }

  private:
    int m_count = 0;
};

class DeskCommandsSeen : public SeenDesk, public testing::WithParamInterface<Sight> {
  protected:
    using Way = std::function<void()>;
    std::vector<Way> Ways() {
        QAction& action = Frame().Commands().Get(GetParam().id);
        std::vector<Way> ways = {[this, &action] { test::ChooseInMenu(Frame(), GetParam().menu, action); }};
        for (const QString& keys : QString(GetParam().keys).split(' ', Qt::SkipEmptyParts))
            ways.emplace_back([keys] { test::PressKeys(keys); });
        return ways;
    }
    // Whether the desk was painted for it.
    void GoAndLook(const Way& way) {
        const PaintCounter paints(Frame().Desk().Desk());
        way();
        EXPECT_TRUE(test::WaitUntil([&] { return paints.Count() > 0; }));
        Settle();
        Look();
    }
};

TEST_P(DeskCommandsSeen, InThePictureByEachWay) {
    StartWired();
    if (GetParam().setUpOnce != nullptr) GetParam().setUpOnce(*this);
    for (const Way& way : Ways()) {
        OpenAgain();
        if (GetParam().setUp != nullptr) GetParam().setUp(*this);
        Settle();
        Look();
        const QImage before = Picture();
        EXPECT_THAT(GetParam().measure(*this), GetParam().before);
        GoAndLook(way);
        EXPECT_THAT(GetParam().measure(*this), GetParam().after);
        EXPECT_NE(Picture(), before);
        if (!GetParam().switches) continue;
        GoAndLook(way);
        EXPECT_THAT(GetParam().measure(*this), GetParam().before);
        EXPECT_EQ(Picture(), before);
    }
    Document().SetModified(false);
}

INSTANTIATE_TEST_SUITE_P(Commands, DeskCommandsSeen, testing::ValuesIn(Sights()),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace tavrin

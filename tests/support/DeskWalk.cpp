// SPDX-License-Identifier: Apache-2.0
#include "support/DeskWalk.h"

#include <algorithm>

#include "document/TvDoc.h"

namespace tavrin::test {

namespace {

constexpr size_t kManyBoxes = 40;  // from here on boxes are rather deleted than added
constexpr float kBeyond = 60;      // pixels that a drag may go past the window's edge

}  // namespace

const std::vector<DeskWalk::Choice>& DeskWalk::Choices() {
    static const std::vector<Choice> choices{
        {14, "drag a box", &DeskWalk::DragABox},
        {3, "drag a frame", &DeskWalk::DragAFrame},
        {14, "wire by dragging", &DeskWalk::WireByDragging},
        {8, "wire by clicks", &DeskWalk::WireByClicks},
        {2, "wire again", &DeskWalk::WireAgain},
        {5, "grow", &DeskWalk::Grow},
        {5, "select by band", &DeskWalk::SelectByBand},
        {5, "click a line", &DeskWalk::ClickALine},
        {6, "click anywhere", &DeskWalk::ClickAnywhere},
        {3, "hover", &DeskWalk::HoverAnywhere},
        {8, "any event", &DeskWalk::AnyEvent},
        {2, "drag over the edge", &DeskWalk::DragOverTheEdge},
        {3, "wheel", &DeskWalk::TurnTheWheel},
        {3, "pan", &DeskWalk::Pan},
        {2, "scroll", &DeskWalk::Scroll},
        {6, "edit", &DeskWalk::Edit},
        {6, "flow", &DeskWalk::Flow},
        {5, "pull a wire", &DeskWalk::PullAWire},
        {5, "drop on a line", &DeskWalk::DropOnALine},
        {3, "copy and paste", &DeskWalk::CopyAndPaste},
        {7, "add and drop", &DeskWalk::AddAndDrop},
        {2, "add and leave", &DeskWalk::AddAndLeave},
        {16, "menu", &DeskWalk::ChooseFromAMenu},
        {1, "lock", &DeskWalk::Lock},
        {1, "save and open again", &DeskWalk::SaveAndOpenAgain},
    };
    return choices;
}

void DeskWalk::Step() {
    m_selected.clear();
    m_pointerEdit = false;
    size_t sum = 0;
    for (const Choice& choice : Choices()) sum += static_cast<size_t>(choice.weight);
    auto left = static_cast<int>(Below(sum));
    if (m_ground.document.m_boxes.size() + m_ground.desk.m_pendingBoxes.size() > kManyBoxes) {
        m_name = "tidy";
        Tidy();
    } else {
        const auto chosen = std::find_if(Choices().begin(), Choices().end(),
                                         [&](const Choice& choice) { return (left -= choice.weight) < 0; });
        m_name = chosen->name;
        (this->*chosen->step)();
    }
    m_pointerEdits += m_pointerEdit ? 1 : 0;
    m_ground.hands.Paint();
}

float DeskWalk::Between(float low, float high) {
    return low + (high - low) * static_cast<float>(Below(1001)) / 1000;
}

COpBox* DeskWalk::AnyBox() {
    const auto& boxes = m_ground.document.m_boxes;
    if (boxes.empty()) return nullptr;
    return std::next(boxes.begin(), static_cast<std::ptrdiff_t>(Below(boxes.size())))->get();
}

COpButton* DeskWalk::AnyButton(bool vinputsOnly) {
    std::vector<COpButton*> buttons;
    for (const auto& box : m_ground.document.m_boxes) {
        for (const auto* side : {&box->inputs, &box->outputs}) {
            for (const auto& button : *side) {
                if (!vinputsOnly || button->kind == ButtonKind::kVinput) buttons.push_back(button.get());
            }
        }
    }
    return buttons.empty() ? nullptr : buttons[Below(buttons.size())];
}

DeskPoint DeskWalk::Anywhere() {
    const COpBox* box = AnyBox();
    switch (Below(8)) {
        case 0:
        case 1:
            return OnAButton();
        case 2:
            return OnALine();
        case 3:
            return OnAnArrow();
        case 4:
            if (box != nullptr) return {BoxRect(*box).left, BoxRect(*box).bottom};
            break;
        case 5:
            if (box != nullptr) return {BoxRect(*box).Right(), BoxRect(*box).Top()};
            break;
        case 6:
            if (box != nullptr) return TitleRect(*box).Middle();
            break;
        default:
            break;
    }
    const DeskRect seen = m_ground.view.Visible();
    return {Between(seen.left, seen.Right()), Between(seen.bottom, seen.Top())};
}

DeskPoint DeskWalk::OnAButton() {
    const COpButton* button = AnyButton();
    return button == nullptr ? DeskPoint{} : ButtonRect(ButtonPlace::Of(*button)).Middle();
}

DeskPoint DeskWalk::OnAnArrow() {
    const COpButton* vinput = AnyButton(true);
    return vinput == nullptr ? DeskPoint{} : GrowArrowRect(ButtonPlace::Of(*vinput), OneIn(2)).Middle();
}

DeskPoint DeskWalk::OnALine() {
    std::vector<DeskPoint> points;
    for (const auto& box : m_ground.document.m_boxes) {
        ForEachConnection(*box, [&](const ButtonPlace& from, const ButtonPlace& to, COpButton&) {
            const Polyline line = ConnectionPolyline(from, to, m_ground.document.linetype == 1);
            for (size_t i = 1; i < line.count; ++i) {
                const float part = Between(0, 1);
                points.push_back({line.points[i - 1].x * part + line.points[i].x * (1 - part),
                                  line.points[i - 1].y * part + line.points[i].y * (1 - part)});
            }
            return true;
        });
    }
    return points.empty() ? DeskPoint{} : points[Below(points.size())];
}

// The pointer

void DeskWalk::Modifiers() {
    m_pointer.shift = OneIn(5);
    m_pointer.control = OneIn(5);
}

PointerState DeskWalk::At(DeskPoint point) {
    if (m_ground.desk.m_selectedButton != nullptr) m_selected.insert(m_ground.desk.m_selectedButton);
    const DeskViewport& view = m_ground.view;
    WindowPoint at = view.ToWindow(point);
    at = {std::clamp(at.x, 0.0F, view.Width() - 1), std::clamp(at.y, 0.0F, view.Height() - 1)};
    m_pointer.at = at;
    return m_pointer;
}

void DeskWalk::Hover(DeskPoint point) {
    m_pointer.left = m_pointer.middle = m_pointer.right = false;
    m_ground.hands.Move(At(point));
}

void DeskWalk::Press(DeskPoint point) {
    if (!m_ground.view.Visible().Contains(point) && OneIn(2)) m_ground.hands.Edit(WalkEdit::kFitToWindow);
    Hover(point);
    m_pointer.left = true;
    m_pointerEdit = true;
    m_ground.hands.LeftDown(At(point));
    m_ground.hands.Paint();
}

void DeskWalk::Drag(DeskPoint point) {
    m_pointer.left = true;
    m_ground.hands.Move(At(point));
    m_ground.hands.Paint();
}

void DeskWalk::Release() {
    m_pointer.left = false;
    if (m_ground.desk.m_selectedButton != nullptr) m_selected.insert(m_ground.desk.m_selectedButton);
    m_ground.hands.LeftUp(m_pointer);
}

void DeskWalk::Click(DeskPoint point) {
    Press(point);
    Release();
}

// The menus

// Goes that way through the menu, or any.
void DeskWalk::Menu(DeskPoint point, const std::vector<std::string>& way) {
    m_pointerEdit = true;
    size_t depth = 0;
    const bool changes = way.empty() && OneIn(5);
    m_ground.hands.Menu(At(point),
                        {[&](const DeskMenuEntries& items) { return NextItem(items, way, depth++); },
                         [&] {
                             if (changes) Meanwhile();
                         }});
    m_ground.hands.Paint();
}

std::optional<size_t> DeskWalk::NextItem(const DeskMenuEntries& items, const std::vector<std::string>& way,
                                         size_t depth) {
    using Kind = DeskMenuEntry::Kind;
    if (depth == 0) ++m_menusOpened;
    std::vector<size_t> places;
    for (size_t place = 0; place < items.size(); ++place) {
        const DeskMenuEntry& item = items[place];
        const bool canBe = item.enabled && (item.kind == Kind::kCommand || item.kind == Kind::kSubmenu);
        if (canBe && (depth >= way.size() || item.text == way[depth])) places.push_back(place);
    }
    if (places.empty() || (way.empty() && OneIn(10))) return std::nullopt;
    const size_t place = places[Below(places.size())];
    if (items[place].kind == Kind::kCommand) ++m_itemsChosen;
    return place;
}

// Not by the user, whose pointer the menu holds.
void DeskWalk::Meanwhile() {
    switch (Below(4)) {
        case 0:
            m_ground.hands.Edit(static_cast<WalkEdit>(Below(static_cast<size_t>(WalkEdit::kCount))));
            break;
        case 1:  // all that there is goes
            m_ground.hands.Edit(WalkEdit::kSelectAll);
            m_ground.hands.Edit(OneIn(2) ? WalkEdit::kCut : WalkEdit::kDelete);
            break;
        case 2:
            m_ground.hands.AddOperator(m_ground.operators[Below(m_ground.operators.size())]);
            break;
        default:
            m_ground.hands.SaveAndOpenAgain();
            break;
    }
    m_ground.hands.Paint();
}

// The steps

void DeskWalk::DragABox() {
    const COpBox* box = AnyBox();
    if (box == nullptr) return;
    Modifiers();
    Press(OneIn(2) ? TitleRect(*box).Middle() : PanelRect(*box).Middle());
    Drag(Anywhere());
    if (OneIn(3)) Drag(Anywhere());
    Release();
}

// By its bar or a corner; where there is none, whatever lies there.
void DeskWalk::DragAFrame() {
    const DeskFrames& frames = m_ground.document.frames;
    if (frames.empty()) return DragABox();
    auto own = frames.begin();
    std::advance(own, Below(frames.size()));
    const float zoom = m_ground.view.Zoom();
    const DeskRect hold =
        OneIn(3) ? FrameCorner(own->second, Below(kFrameCorners), zoom) : FrameHandle(own->second, zoom);
    Modifiers();
    Press(hold.Middle());
    Drag(Anywhere());
    if (OneIn(3)) Drag(Anywhere());
    Release();
}

void DeskWalk::WireByDragging() {
    Modifiers();
    Press(OnAButton());
    if (OneIn(3)) Drag(Anywhere());
    Drag(OneIn(6) ? OnAnArrow() : OnAButton());
    Release();
}

void DeskWalk::WireByClicks() {
    Modifiers();
    Click(OnAButton());
    if (OneIn(4)) Hover(Anywhere());
    Click(OnAButton());
}

// From either end of a wire that stands.
void DeskWalk::WireAgain() {
    const COpButton* button = AnyButton();
    if (button == nullptr || button->connections.Empty()) return;
    const DeskPoint start = ButtonRect(ButtonPlace::Of(*button)).Middle();
    const DeskPoint end = ButtonRect(ButtonPlace::Of(*button->connections.First())).Middle();
    Press(start);
    if (OneIn(2)) {
        Drag(end);
    } else {
        Release();
        Press(end);
    }
    Release();
}

void DeskWalk::Grow() {
    const COpButton* vinput = AnyButton(true);
    if (vinput == nullptr) return;
    Press(OneIn(2) ? OnAButton() : ButtonRect(ButtonPlace::Of(*vinput)).Middle());
    Drag(ButtonRect(ButtonPlace::Of(*vinput)).Middle());
    Drag(GrowArrowRect(ButtonPlace::Of(*vinput), OneIn(2)).Middle());
    Release();
}

void DeskWalk::SelectByBand() {
    Modifiers();
    const DeskRect seen = m_ground.view.Visible();
    Press({Between(seen.left, seen.Right()), Between(seen.bottom, seen.Top())});
    Drag(Anywhere());
    Drag({Between(seen.left, seen.Right()), Between(seen.bottom, seen.Top())});
    Release();
}

void DeskWalk::ClickALine() {
    Modifiers();
    Click(OnALine());
    const auto& lines = m_ground.desk.m_selectedConnects;
    if (OneIn(4)) {
        m_ground.hands.Edit(WalkEdit::kDelete);
    } else if (!lines.empty() && OneIn(3)) {
        // What the line leads to goes.
        const COpButton& input = *lines.back();
        if (OneIn(2)) {
            Menu(TitleRect(*input.owner).Middle(), {"Delete", "This Box"});
        } else {
            Menu(ButtonRect(ButtonPlace::Of(input)).Middle(), {"Delete", "Delete Button"});
        }
    }
}

void DeskWalk::ClickAnywhere() {
    Modifiers();
    Click(Anywhere());
}

void DeskWalk::HoverAnywhere() { Hover(Anywhere()); }

// Such as comes when a gesture is interrupted.
void DeskWalk::AnyEvent() {
    Modifiers();
    switch (Below(4)) {
        case 0:
            Press(Anywhere());
            break;
        case 1:
            Release();
            break;
        case 2:
            Drag(Anywhere());
            break;
        default:
            m_ground.hands.Tick();
            break;
    }
}

void DeskWalk::DragOverTheEdge() {
    Press(Anywhere());
    const DeskViewport& view = m_ground.view;
    m_pointer.at = {Between(-kBeyond, view.Width() + kBeyond), OneIn(2) ? -kBeyond : view.Height() + kBeyond};
    m_ground.hands.Move(m_pointer);
    for (uint32_t count = Below(4); count > 0; --count) m_ground.hands.Tick();
    m_ground.hands.Paint();
    if (OneIn(2)) Drag(Anywhere());
    Release();
}

void DeskWalk::TurnTheWheel() { m_ground.hands.Wheel(OneIn(2)); }

void DeskWalk::Pan() {
    Hover(Anywhere());
    (OneIn(2) ? m_pointer.middle : m_pointer.right) = true;
    m_pointer.shift = true;
    m_pointerEdit = true;
    m_ground.hands.Move(At(Anywhere()));
    m_pointer.middle = m_pointer.right = m_pointer.shift = false;
}

void DeskWalk::Scroll() {
    const auto action = static_cast<ScrollAction>(Below(7));
    m_ground.hands.Scroll(OneIn(2), action, static_cast<int>(Below(2000)) - 1000);
}

void DeskWalk::Edit() {
    if (OneIn(4)) Press(Anywhere());  // in the midst of a gesture
    m_ground.hands.Edit(static_cast<WalkEdit>(Below(static_cast<size_t>(WalkEdit::kCount))));
    if (OneIn(2)) m_ground.hands.Edit(WalkEdit::kZoomReset);
}

void DeskWalk::Flow() {
    if (OneIn(6)) Press(Anywhere());  // in the midst of a gesture
    if (OneIn(6)) m_ground.hands.Edit(WalkEdit::kSelectAll);
    m_ground.hands.Flow(static_cast<WalkFlow>(Below(static_cast<size_t>(WalkFlow::kCount))), Below(6));
    m_ground.hands.Paint();
    if (OneIn(2)) Release();
}

// Where the library wants no pulling, it picks the input.
void DeskWalk::PullAWire() {
    std::vector<const COpButton*> inputs;
    for (const auto& box : m_ground.document.m_boxes) {
        for (const auto& input : box->inputs) {
            if (!input->connections.Empty()) inputs.push_back(input.get());
        }
    }
    if (inputs.empty()) return;
    m_pointer.shift = m_pointer.control = false;
    Press(ButtonRect(ButtonPlace::Of(*inputs[Below(inputs.size())])).Middle());
    Drag(Anywhere());
    if (OneIn(4)) m_ground.hands.Flow(WalkFlow::kEscape, 0);
    if (OneIn(3)) Drag(OnAButton());
    if (OneIn(10)) Meanwhile();
    Release();
}

void DeskWalk::DropOnALine() {
    const COpBox* box = AnyBox();
    if (box == nullptr) return;
    if (OneIn(2)) m_ground.hands.Edit(WalkEdit::kUnselectAll);
    m_pointer.shift = m_pointer.control = false;
    Press(PanelRect(*box).Middle());
    Drag(OnALine());
    Release();
}

void DeskWalk::CopyAndPaste() {
    m_ground.hands.Edit(OneIn(3) ? WalkEdit::kCut : WalkEdit::kCopy);
    m_ground.hands.Edit(WalkEdit::kPaste);
    m_ground.hands.Paint();
    if (OneIn(3)) return;
    Hover(Anywhere());
    Press(Anywhere());
    Release();
}

void DeskWalk::Tidy() {
    m_ground.hands.Edit(WalkEdit::kFitToWindow);
    m_ground.hands.Paint();
    m_pointer.shift = m_pointer.control = false;
    const DeskRect seen = m_ground.view.Visible();
    const DeskPoint middle = seen.Middle();
    Press({seen.left + 1, seen.bottom + 1});
    if (m_ground.desk.m_pendingBoxes.empty()) Drag({middle.x, seen.Top() - 1});
    Release();
    if (OneIn(3)) m_ground.hands.Edit(WalkEdit::kSelectAll);
    m_ground.hands.Edit(OneIn(2) ? WalkEdit::kCut : WalkEdit::kDelete);
    m_ground.hands.Edit(WalkEdit::kZoomReset);
    m_ground.hands.Paint();
}

void DeskWalk::AddAndDrop() {
    AddAndLeave();
    if (OneIn(2)) m_ground.hands.Edit(WalkEdit::kZoomReset);
    const DeskRect seen = m_ground.view.Visible();
    Hover(Anywhere());
    Press({Between(seen.left, seen.Right()), Between(seen.bottom, seen.Top())});
    Release();
}

void DeskWalk::AddAndLeave() {
    m_ground.hands.AddOperator(m_ground.operators[Below(m_ground.operators.size())]);
    m_ground.hands.Paint();
    const COpBox* box = AnyBox();
    if (box != nullptr && OneIn(3)) Menu(TitleRect(*box).Middle(), {"Copy"});  // while the other waits
}

void DeskWalk::ChooseFromAMenu() {
    if (OneIn(8)) {
        Press(Anywhere());
    } else {
        Hover(Anywhere());
    }
    Menu(OneIn(3) ? Anywhere() : OnAButton());
    if (OneIn(2)) Hover(Anywhere());
}

// What is done meanwhile does not arrive.
void DeskWalk::Lock() {
    m_ground.hands.Lock(true);
    Press(OnAButton());
    Drag(Anywhere());
    Release();
    Menu(OnAButton());
    m_ground.hands.Lock(false);
}

void DeskWalk::SaveAndOpenAgain() {
    if (OneIn(3)) m_ground.hands.SaveAndOpenAgain();
}

}  // namespace tavrin::test

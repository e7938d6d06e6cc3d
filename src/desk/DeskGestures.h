// SPDX-License-Identifier: Apache-2.0
// What the pointer does on the desk: selecting, moving, wiring, rubber bands, panning.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "desk/DeskViewport.h"
#include "desk/FrameGeometry.h"
#include "desk/OpDesk.h"

namespace tavrin {

class BoxMarks;

// The pointer as an event of the window tells it.
struct PointerState {
    WindowPoint at;
    bool left = false;
    bool middle = false;
    bool right = false;
    bool shift = false;
    bool control = false;
};

// Shown while the pointer is over no box.
extern const char* const kDeskHint;

// A state machine that a window feeds with its events and asks what to draw. It owns nothing but the gesture
// that runs; the selection and what lies under the mouse are the desk's. What becomes of a wire in hand
// stands in DeskWires.cpp. Wires that may not be are refused with an alert; nothing else can fail. Nothing
// may be fed while the document is locked.
class DeskGestures {
  public:
    enum class Kind { kIdle, kMoving, kWiring, kBandAdd, kBandToggle, kResizing };

    // All outlive it. `windows` is told what to repaint, `showStatus` what help to show.
    struct Needs {
        CTvDoc& document;
        COpDesk& desk;
        DeskViewport& view;
        DeskView& windows;
        Report& report;
        float lineWidth;  // pixels; how near a click on a line must be
        std::function<void(const std::string&)> showStatus;
        // A wire that was drawn from the picked button was let go of there, over the empty desk. Who takes it
        // up returns true, and the button stays picked until they let it go.
        std::function<bool(COpButton& button, DeskPoint at)> wireDropped = {};
        // What the last run says of boxes, which comes before their help; null for nothing.
        const BoxMarks* marks = nullptr;
    };
    explicit DeskGestures(Needs needs) : m_needs(std::move(needs)) {}

    void LeftDown(const PointerState& pointer);
    void Move(const PointerState& pointer);
    void LeftUp(const PointerState& pointer);
    // Another button went down: what it pans is counted from there.
    void OtherDown(const PointerState& pointer) { m_mousePoint = pointer.at; }
    // Ends a gesture without its result: no release will come, since the desk has been locked, a box has come
    // up over it, or it shows another document. A button that was picked stays picked; a wire that was pulled
    // off its input is where it was.
    void Cancel();
    // Escape: lets go of the picked button or the wire in hand, where the library wants that. False if there
    // was none, and the key is free for something else.
    bool LetGo();
    // The pointer is outside the desk's window, or what it does there reaches the desk no more.
    void PointerLeft();
    // The view has moved under a pointer at rest.
    void LookAgain();
    // To be called at even times while a gesture runs: scrolls while boxes are held beyond the window's edge.
    void Tick();
    // The help that was shown last if it is that of a box or button which is gone since, once; who shows it
    // is to show something else.
    std::optional<std::string> TakeStaleHelp();
    // The frame or note that a press there would take hold of, whatever lies below it. Nothing where a box or
    // a wire lies above.
    std::optional<FrameHit> FrameAt(DeskPoint at) const;
    // The corner of a frame or note that is dragged, or that a press would take hold of.
    std::optional<size_t> HotCorner() const;
    // The next move only tells where the pointer is: a menu has closed, and this is no drag.
    void IgnoreNextMove() { m_ignoreNextMove = true; }

    // The window takes what it draws from here. Before each paint the arrows by which a vinput grows are to
    // follow the state of things.
    void UpdateGrowArrows();
    Kind Current() const { return m_gesture; }
    // From the picked button to the mouse: while it is drawn, and while somebody looks for its other end.
    bool DrawsWire() const {
        return m_needs.desk.m_selectedButton != nullptr && (m_gesture == Kind::kWiring || m_isTakenUp);
    }
    DeskPoint Mouse() const { return {m_needs.desk.m_mouseDesk[0], m_needs.desk.m_mouseDesk[1]}; }
    DeskRect Band() const { return DeskRect::Between(m_bandAnchor, Mouse()); }
    bool GrowArrowsShown() const { return m_growArrowsShown; }
    void HideGrowArrows() { m_growArrowsShown = false; }
    // What a press would meet, to be lit before it; only to be compared with, since it may be gone. Nothing
    // while a gesture runs, boxes wait or a button is picked, nor in a library that does not want it.
    struct Hover {
        const COpBox* box = nullptr;
        const COpButton* button = nullptr;  // of the box
        const COpButton* line = nullptr;    // the input that stands for it
        bool operator==(const Hover&) const = default;
    };
    const Hover& Hovered() const { return m_hover; }
    bool HasMoved() const { return m_hasMoved; }  // boxes, in the gesture that runs
    bool IsGrowArrowHot(bool above) const { return above ? m_growArrowUpHot : m_growArrowDownHot; }

  private:
    // What a press met, each with the pointer's modifiers.
    void PressButton(COpButton& button);
    void PressBox(COpBox& box, const PointerState& pointer);
    void PressLine(COpButton& input, const PointerState& pointer);
    void PressFrame(const FrameHit& hit, DeskPoint at, const PointerState& pointer);
    void PressEmptyDesk(DeskPoint at, const PointerState& pointer);

    COpButton* LineAt(DeskPoint at) const;
    void FollowHover(const COpBox* box, const COpButton* button, DeskPoint at);
    void SetHover(const Hover& hover);
    void FollowAutoScroll(DeskPoint at, bool leftDown);
    void FollowButton(COpBox* box, COpButton* button, DeskPoint at);
    void DragPending(DeskPoint at, DeskPoint delta);
    void ShowHelp();
    std::string HelpUnderPointer() const;
    void Finish(DeskPoint at);
    void PullWire();
    COpButton* TargetOf(const COpButton& picked, COpButton* grown) const;
    bool IsEmptyDesk(DeskPoint at) const;
    void FinishWire(COpButton* grown);
    void FinishPull(COpButton& input, COpButton* grown, DeskPoint at);
    void DropWire(DeskPoint at);
    void Wire(COpButton& target);
    void FinishBand();
    void MoveBoxes(DeskPoint delta);
    void ResizeFrame(DeskPoint at);
    void EndGesture();
    bool IsInGrowArrow(DeskPoint at, bool above) const;
    void Remember(const PointerState& pointer, DeskPoint at);

    // The numbers tell what a help is about from what comes to lie in its place.
    struct ShownHelp {
        std::string text;
        const COpBox* box = nullptr;
        uint64_t boxSerial = 0;
        const COpButton* button = nullptr;
        uint64_t buttonSerial = 0;
    };

    Needs m_needs;
    Kind m_gesture = Kind::kIdle;
    std::optional<HeldEdit> m_drag;  // all that is moved until the release is one act
    WindowPoint m_mousePoint;        // last position in the window
    ShownHelp m_help;                // what was shown last
    Hover m_hover;
    bool m_pointerInside = false;
    DeskPoint m_bandAnchor;
    FrameHit m_resized;          // in a gesture of that kind
    DeskPoint m_cornerFromHand;  // of the corner that is dragged
    bool m_growArrowsShown = false;
    bool m_growArrowUpHot = false;
    bool m_growArrowDownHot = false;
    bool m_ignoreNextMove = false;
    bool m_autoScroll = false;
    bool m_hasMoved = false;      // boxes, in this gesture
    bool m_isTakenUp = false;     // the wire that was dropped last
    bool m_hasDrawn = false;      // a wire, off the button that was pressed
    DeskPoint m_autoScrollDelta;  // pixels
};

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
// The edits of frames and notes.
#include <algorithm>
#include <utility>

#include "desk/FrameGeometry.h"
#include "desk/OpDesk.h"
#include "site/Site.h"

namespace tavrin {

namespace {

using Kind = DeskFrame::Kind;

// Of a new one, desk units.
constexpr float kMargin = 20;  // round the boxes
constexpr float kBar = 24;     // above that
constexpr DeskRect kFrameSize{0, 0, 240, 160};
constexpr int kFrameColor = 1;
constexpr int kNoteColor = 3;
constexpr const char* kFrameTitle = "Frame";
constexpr const char* kNoteText = "Note";

DeskRect Around(const DeskRect& size, DeskPoint middle) {
    return {middle.x - size.width * 0.5F, middle.y - size.height * 0.5F, size.width, size.height};
}

DeskFrame MakeFrame(Kind kind, const DeskRect& rect) {
    const bool isFrame = kind == Kind::kFrame;
    DeskFrame frame{.kind = kind,
                    .color = isFrame ? kFrameColor : kNoteColor,
                    .left = rect.left,
                    .bottom = rect.bottom,
                    .width = rect.width,
                    .height = rect.height,
                    .text = isFrame ? kFrameTitle : kNoteText};
    frame.KeepBounds();
    return frame;
}

void MoveBy(DeskFrame& frame, DeskPoint delta) {
    frame.left += delta.x;
    frame.bottom += delta.y;
}

DeskPoint MiddleOf(const std::vector<DeskFrame>& frames) {
    DeskRect all = FrameRect(frames.front());
    for (const DeskFrame& frame : frames) all = all.UnitedWith(FrameRect(frame));
    return all.Middle();
}

}  // namespace

void COpDesk::DeletePending() {
    if (!m_pendingFrames.empty()) m_view->Repaint();  // no box may tell that they have gone
    m_pendingFrames.clear();
    Discard(m_pendingBoxes, Edits::Stood::kWaiting);
}

DeskFrame* COpDesk::FindFrame(int number) {
    const auto found = m_document.frames.find(number);
    return found == m_document.frames.end() ? nullptr : &found->second;
}

// At the end of the list, where nobody has its number.
int COpDesk::TakeUpFrame(DeskFrame frame) {
    m_document.edits.FramesChanged();
    if (!AddFrame(m_document.frames, std::move(frame))) {
        m_host.GetSite().report.Alert("a desk holds no more than %zu frames and notes", kMostFrames);
        return 0;
    }
    return m_document.frames.rbegin()->first;
}

int COpDesk::AddFrameOrNote(const DeskFrame& frame) {
    const int number = TakeUpFrame(frame);
    if (number == 0) return 0;
    ClearSelections();
    m_selectedFrames = {number};
    m_document.edits.SelectionChanged();
    return number;
}

int COpDesk::FrameSelected(DeskPoint middle) {
    const EditScope edit(m_document, "Add Frame");
    std::optional<DeskRect> around;
    for (const auto& box : m_document.m_boxes) {
        if (box->selected == 0) continue;
        around = around ? around->UnitedWith(BoxRect(*box)) : BoxRect(*box);
    }
    for (const int number : m_selectedFrames) {
        const DeskFrame* frame = FindFrame(number);
        if (frame != nullptr) around = around ? around->UnitedWith(FrameRect(*frame)) : FrameRect(*frame);
    }
    DeskRect rect = Around(kFrameSize, middle);
    if (around) {
        rect = around->GrownBy(kMargin);
        rect.height += kBar;
    }
    return AddFrameOrNote(MakeFrame(Kind::kFrame, rect));
}

int COpDesk::AddNote(DeskPoint middle) {
    const EditScope edit(m_document, "Add Note");
    return AddFrameOrNote(MakeFrame(Kind::kNote, Around(kNewNote, middle)));
}

template <typename Change>
void COpDesk::EditFrame(int number, const char* act, Change change) {
    DeskFrame* frame = FindFrame(number);
    if (frame == nullptr) return;
    DeskFrame changed = *frame;
    change(changed);
    changed.KeepBounds();
    if (changed == *frame) return;
    const EditScope edit(m_document, act);
    m_document.edits.FramesChanged();
    *frame = std::move(changed);
    m_view->Repaint();
}

void COpDesk::SetFrameText(int number, const std::string& text) {
    const DeskFrame* frame = FindFrame(number);
    if (frame == nullptr) return;
    const bool isNote = frame->kind == Kind::kNote;
    const EditScope edit(m_document, isNote ? "Edit Note" : "Rename Frame");
    m_document.edits.JoinRun();
    EditFrame(number, "Edit Note", [&](DeskFrame& own) { own.text = text; });
}

void COpDesk::SetFrameColor(int number, int color) {
    EditFrame(number, "Color", [color](DeskFrame& frame) { frame.color = color; });
}

void COpDesk::ResizeFrame(int number, size_t corner, DeskPoint at) {
    EditFrame(number, "Resize", [&](DeskFrame& frame) {
        const DeskRect rect = WithCornerAt(FrameRect(frame), corner, at);
        frame.left = rect.left;
        frame.bottom = rect.bottom;
        frame.width = rect.width;
        frame.height = rect.height;
    });
    m_view->UpdateScrollBars();
}

void COpDesk::DeleteFrame(int number) {
    if (FindFrame(number) == nullptr) return;
    const EditScope edit(m_document, "Delete");
    m_document.edits.FramesChanged();
    m_document.frames.erase(number);
    m_selectedFrames.erase(number);
}

// Found by where things lie when the drag begins: what it passes over later stays where it is.
void COpDesk::TakeAlong() {
    m_carriedBoxes.clear();
    m_carriedFrames.clear();
    if (m_selectedFrames.empty()) return;
    // What is selected itself comes along in any case.
    std::vector<const COpBox*> boxes;
    std::vector<PlacedFrame> frames;
    for (const auto& box : m_document.m_boxes) {
        if (box->selected == 0) boxes.push_back(box.get());
    }
    for (const auto& [number, frame] : m_document.frames) {
        if (!m_selectedFrames.contains(number)) frames.push_back({number, &frame});
    }
    for (const int number : m_selectedFrames) {
        const DeskFrame* frame = FindFrame(number);
        if (frame == nullptr || frame->kind != Kind::kFrame) continue;
        const DeskRect rect = FrameRect(*frame);
        for (const COpBox* box : boxes) {
            if (rect.Encloses(BoxRect(*box))) m_carriedBoxes.insert(box->Serial());
        }
        for (const PlacedFrame& other : frames) {
            if (rect.Encloses(FrameRect(*other.frame))) m_carriedFrames.insert(other.number);
        }
    }
}

void COpDesk::MoveSelectedFrames(float dx, float dy) {
    std::set<int> moving = m_carriedFrames;
    moving.insert(m_selectedFrames.begin(), m_selectedFrames.end());
    for (const int number : moving) {
        DeskFrame* frame = FindFrame(number);
        if (frame == nullptr) continue;
        m_document.edits.FramesChanged();
        MoveBy(*frame, {dx, dy});
        frame->KeepBounds();
    }
}

DeskPoint COpDesk::PendingAnchor() const {
    if (m_pendingBoxes.empty()) return m_pendingAnchor;
    const COpBox& first = *m_pendingBoxes.front();
    return {first.xypos[0], first.xypos[1]};
}

// `first` is the first box that is copied with them.
void COpDesk::CopySelectedFrames(const COpBox* first) {
    m_clipboardFrames.clear();
    for (const int number : m_selectedFrames) {
        if (const DeskFrame* frame = FindFrame(number)) m_clipboardFrames.push_back(*frame);
    }
    if (m_clipboardFrames.empty()) return;
    const DeskPoint anchor =
        first == nullptr ? MiddleOf(m_clipboardFrames) : DeskPoint{first->xypos[0], first->xypos[1]};
    for (DeskFrame& frame : m_clipboardFrames) MoveBy(frame, {-anchor.x, -anchor.y});
}

// Told from the anchor of the first box that waits, if one does.
void COpDesk::BringFrames(const std::vector<DeskFrame>& frames, const std::optional<DeskPoint>& cursor) {
    m_pendingFrames = frames;
    if (frames.empty() || !m_pendingBoxes.empty()) return;
    const auto sight = m_view->Sight();
    m_pendingAnchor = cursor ? *cursor : sight ? sight->Middle() : DeskPoint{};
    m_mouseDesk[0] = m_pendingAnchor.x;
    m_mouseDesk[1] = m_pendingAnchor.y;
    m_pendingPlaced = true;
    m_view->Repaint();
}

void COpDesk::MovePendingFrames(DeskPoint delta) {
    m_pendingAnchor = {m_pendingAnchor.x + delta.x, m_pendingAnchor.y + delta.y};
}

std::vector<DeskFrame> COpDesk::FramesInHand() const {
    std::vector<DeskFrame> frames = m_pendingFrames;
    for (DeskFrame& frame : frames) {
        MoveBy(frame, PendingAnchor());
        frame.KeepBounds();
    }
    return frames;
}

// While the boxes that they wait with still do. They come to be selected, as those are.
void COpDesk::DropPendingFrames() {
    for (DeskFrame& frame : FramesInHand()) {
        const int number = TakeUpFrame(std::move(frame));
        if (number == 0) break;
        m_selectedFrames.insert(number);
    }
    m_pendingFrames.clear();
}

void COpDesk::ForgetGoneFrames() {
    std::erase_if(m_selectedFrames, [this](int number) { return FindFrame(number) == nullptr; });
}

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
// Which values stand in the slider column, and in which order.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "document/TvDoc.h"

namespace tavrin {

// What the slider desk asks of the column that shows it.
class SliderView {
  public:
    virtual ~SliderView() = default;

    virtual void PlaceFrames() {}  // others stand, or they have other heights
    // Something of the button is different, which has a frame.
    virtual void RefreshFrame(COpButton&) {}
};

// A button whose value is shown.
struct SliderFrame {
    LiveRef<COpButton> button;
    // Its panel takes no input. Not the same as the button's `lock`, which counts from when it is next
    // changed: the frame of a button that came with the lock set can be used at first.
    bool isDisabled = false;
};

// Has a frame for each input that the library knows, that nothing feeds and that has no fixed text, if its
// box is selected or it is pinned; ordered by the boxes' titles and numbers without regard to case. Holds no
// values. Listens to the document, which outlives it; one for each main window. Nothing here can fail.
class CSliderDesk {
  public:
    explicit CSliderDesk(CTvDoc& document);
    CSliderDesk(const CSliderDesk&) = delete;
    CSliderDesk& operator=(const CSliderDesk&) = delete;

    // Null for none. Outlives this, or takes itself back.
    void SetView(SliderView* view) { m_view = view == nullptr ? &m_noView : view; }

    // From top to bottom. Those of buttons that are about to be told as gone may be among them.
    const std::vector<SliderFrame>& Frames() const { return m_frames; }
    // The place of a button's frame, or -1.
    int PlaceOf(const COpButton& button) const;

    // Brings the frames in line with network and selection.
    void Update();

    // While frozen, frames stay as they are but for those of buttons that have gone.
    bool IsFrozen() const { return m_frozen; }
    void SetFrozen(bool frozen);

    // One edit each, unless it is so already; what follows for other frames is Update's.
    void SetStow(COpButton& button, bool stow);
    void SetPin(COpButton& button, bool pin);
    void SetLock(COpButton& button, bool lock);
    // Of all frames that stand, as one edit.
    void StowAll(bool stow);
    void PinAll(bool pin);
    void LockAll(bool lock);

  private:
    void OnChange(const Change& change);
    void Refresh(COpButton& button);
    void Clear();
    void SyncFrames();
    void DropDead();
    void Index();
    void SetFlag(COpButton& button, int COpButton::*flag, bool value, const char* act);
    template <typename Setter>
    void ForAll(const char* act, Setter set);

    CTvDoc& m_document;
    SliderView m_noView;
    SliderView* m_view = &m_noView;
    std::vector<SliderFrame> m_frames;
    std::unordered_map<uint64_t, size_t> m_places;  // by serial number
    bool m_frozen = false;
    Listeners<>::Subscription m_beforeDelete;
    Edits::Subscription m_changes;
};

}  // namespace tavrin

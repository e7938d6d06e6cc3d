// SPDX-License-Identifier: Apache-2.0
// The window's view of the desk: which part of it is seen, and how large.
#pragma once

#include <string>

#include "desk/DeskGeometry.h"
#include "desk/DeskStyle.h"

namespace tavrin {

// Window pixels: x to the right, y downward, from the upper left corner.
struct WindowPoint {
    float x = 0;
    float y = 0;
};

// What a scroll bar shows of the window's part of the desk and the network together, in whole desk units; for
// the vertical one they run downward.
struct ScrollRange {
    int minimum = 0;
    int maximum = 0;   // the far end of what there is, not the last position
    int page = 0;      // how much of it is seen
    int position = 0;  // where that begins
    bool canScroll = false;
};

// What the two scroll bars of a desk show.
struct ScrollRanges {
    ScrollRange across;
    ScrollRange down;
};

enum class ScrollAction { kLineUp, kLineDown, kPageUp, kPageDown, kThumb, kTop, kBottom };

// Works on the offset and zoom factor of the document, which it only looks at: they are saved with it, so
// every change marks it modified. Operations that change the view return whether they did; scroll bars and
// picture are then to follow. Nothing here can fail.
class DeskViewport {
  public:
    DeskViewport(CTvDoc& document, ZoomLimits limits) : m_document(document), m_limits(limits) {}

    // The size of the desk's window in pixels.
    void SetSize(float width, float height);
    float Width() const { return m_width; }
    float Height() const { return m_height; }

    // Pixels in a desk unit. A factor from a file that nothing could be drawn with counts as 1.
    float Zoom() const;
    DeskPoint ToDesk(WindowPoint point) const;
    WindowPoint ToWindow(DeskPoint point) const;
    DeskRect Visible() const;

    void CentreView(DeskPoint middle);
    // On the box of that title and number; nothing if there is none.
    bool CentreOnBox(const std::string& boxTitleWid);
    // By one step about the middle of the window. A step beyond the limits is not made at all. An empty
    // desk is not zoomed.
    bool ZoomIn();
    bool ZoomOut();
    // To a factor of 1, also on an empty desk.
    bool ZoomReset();
    // Shows the whole network, never magnified; the zoom limits do not count.
    bool FitToWindow();
    // Forward is positive.
    bool Wheel(int delta) { return delta > 0 ? ZoomIn() : delta < 0 && ZoomOut(); }
    // Moves what is seen by window pixels. An empty desk is not moved.
    bool Pan(float dx, float dy);

    // Shows what lies further by pixels, to the right and upward; also on an empty desk.
    void ScrollBy(DeskPoint pixels);

    // Both at once, since each costs a look at the whole network.
    ScrollRanges Ranges() const;
    // `thumb` is where the user put the bar's thumb.
    void ScrollHorizontally(ScrollAction action, int thumb = 0);
    void ScrollVertically(ScrollAction action, int thumb = 0);

  private:
    void SetZoom(float zoom);

    CTvDoc& m_document;
    ZoomLimits m_limits;
    float m_width = 0;
    float m_height = 0;
};

}  // namespace tavrin

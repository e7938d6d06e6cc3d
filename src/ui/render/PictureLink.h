// SPDX-License-Identifier: Apache-2.0
// The desk's end of the line to the picture window, which is a program of its own.
#pragma once

#include <QRect>
#include <functional>
#include <memory>
#include <string>

#include "render/RenderRecord.h"

namespace tavrin {

struct Site;

// Owned by the frame. What is said here reaches the window where there is one; ShowLive, CompareRenders and
// ComeUp start it where there is none. One that comes up later is told what was said before. Nothing here
// waits: a window that hangs or is gone costs the desk nothing, and what it cannot take any more is told when
// it comes to itself, with one line in the log. Without a display, or where TAVRN_VIEW names no program,
// there is no window, and nothing happens.
class PictureLink {
  public:
    // What the user does in the window. All on the main thread.
    struct Hands {
        std::function<void(int number)> selectRender;
        std::function<void(int number)> restoreRender;
        std::function<void(int number)> keepRender;
        std::function<void(uint64_t id)> liveShown;  // the live picture of this number stands in the window
        std::function<void()> cameOrWent;            // the window
    };
    // The site outlives it.
    PictureLink(Site& site, Hands hands);
    ~PictureLink();
    PictureLink(const PictureLink&) = delete;
    PictureLink& operator=(const PictureLink&) = delete;

    // A picture of the network as it stands now, which takes the place of the one before. The file stays
    // until two more have been shown.
    void ShowLive(uint64_t id, const std::string& path, bool isFinal);
    // Why there is none.
    void TellLiveTrouble(const std::string& text);
    void EndLive();

    // What is known of a render now, for the strip.
    void TellRender(const RenderRecord& record);
    // It has left the history.
    void ForgetRender(int number);
    void CompareRenders(int first, int second);

    // There can be a window.
    bool IsPossible() const;
    void ComeUp();
    void Close();
    bool IsUp() const;
    // Where the main window stands, for a picture window that is docked to it.
    void FrameMoved(const QRect& frame);

  private:
    class Line;
    std::unique_ptr<Line> m_line;
};

}  // namespace tavrin

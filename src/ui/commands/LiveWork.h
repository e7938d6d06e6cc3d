// SPDX-License-Identifier: Apache-2.0
// "Live" as the frame does it: when a picture is wanted, where it goes, and what is told of it.
#pragma once

#include <QTimer>
#include <functional>
#include <string>

#include "base/Listeners.h"
#include "document/Edits.h"
#include "render/LiveRender.h"

namespace tavrin {

class CommandActions;
class CStatusBox;
class PictureLink;
struct Workspace;

// Belongs to the frame. While Live is on, or an output is probed, the network is looked at after each change:
// once for each turn of the event loop and, where that takes too long for a hand that moves, once the hand
// rests. It goes on over other documents, and libraries.
class LiveWork {
  public:
    // All of it outlives this.
    struct Needs {
        Workspace& work;
        CStatusBox& statusBox;
        PictureLink& pictures;
        std::function<void()> rulesChanged;  // Live has switched itself off
    };
    explicit LiveWork(Needs needs);
    ~LiveWork();

    void AddTo(CommandActions& commands);

    void Toggle();
    // The user's choice; a probe is followed whatever it is.
    bool IsOn() const { return m_isOn; }
    // The program ends: nothing is started any more.
    void End();

    // Told of each picture that goes to the window, and of what keeps others from coming.
    Listeners<const LivePicture&> afterPicture;
    Listeners<const std::string&> afterTrouble;
    // The picture of this number stands in the window.
    Listeners<uint64_t> afterShown;

    // What follows the network, for who measures.
    const LiveRender& Render() const { return m_live; }

  private:
    void OnChange(const Change& change);
    void OnProbe();
    void Schedule();
    void Update();
    bool IsWanted() const;
    void OnPicture(const LivePicture& picture);
    void OnTrouble(const std::string& text);
    void OnSwitchedOff();

    Needs m_needs;
    Workspace& m_work;
    LiveRender m_live;
    bool m_isOn = false;
    bool m_isRefused = false;  // it has failed for good, until the user wants it again
    bool m_hasEnded = false;
    std::string m_trouble;  // told last, and still so
    QString m_told;         // what the status box is to show
    QTimer m_turn;          // to the next look at the network
    QTimer m_rest;          // the hand rests: the time of the last picture is told
    Edits::Subscription m_changes;
    Listeners<>::Subscription m_parts;
    Listeners<>::Subscription m_probes;
};

}  // namespace tavrin

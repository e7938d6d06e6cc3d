// SPDX-License-Identifier: Apache-2.0
// The library's live command: a child that stays and is told of each state in a line.
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <string>

#include "render/LiveMaker.h"
#include "site/LineChild.h"

namespace tavrin {

// Owned by LiveRender. Speaks the protocol of docs/library.md. An answer that is none, an end, or none within
// the limit ends the child with all it has started; that is told, and the object is of no more use. Main
// thread only.
class LiveCommand : public LiveMaker {
  public:
    // The words behind "livecommand", the script made absolute; empty if the library in use has none.
    static std::vector<std::string> WordsOf(const Site& site);

    LiveCommand(Site& site, const std::vector<std::string>& words, LiveAnswers& answers);

    // The one underway has shown something, or there is none: at most one newer state waits for the child.
    bool CanTake() const override;
    void Take(const LiveState& state) override;

  private:
    void Hear(const std::string& line);
    void HearPicture(const std::string& line, const std::string& path, bool isFinal);
    // Why a path is not that of a picture of the state.
    static std::optional<std::string> ProblemOf(const LiveState& state, const std::string& path);
    // The first state's last word has come.
    LiveState TakeFirst();
    void RenewLimit();
    void Fail(const std::string& why);

    Site& m_site;
    LiveAnswers& m_answers;
    LiveLimit m_limit;
    LiveNotes m_notes;
    std::deque<LiveState> m_underway;  // in the order in which they were sent
    bool m_hasShown = false;           // something of the first of them
    std::unique_ptr<LineChild> m_child;
};

}  // namespace tavrin

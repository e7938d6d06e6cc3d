// SPDX-License-Identifier: Apache-2.0
// What makes pictures of states for Live: a command that stays, or runs of the scripts of a render.
#pragma once

#include <chrono>
#include <set>
#include <string>
#include <vector>

#include "render/LiveState.h"

namespace tavrin {

// Who is told what becomes of the states; it outlives the maker, which it may destroy while it is told that
// it has failed.
class LiveAnswers {
  public:
    virtual ~LiveAnswers() = default;
    // One that is not final is followed by a better one, or by another answer.
    virtual void OnPicture(uint64_t id, const std::string& path, bool isFinal) = 0;
    // It gives no picture, for its own sake. `notes` are lines that say more of that.
    virtual void OnError(uint64_t id, const std::string& text, const std::string& notes) = 0;
    // A newer one has come before its last picture.
    virtual void OnDropped(uint64_t id) = 0;
    // The maker takes no more, and those that it had are not answered. `why` is a sentence.
    virtual void OnFailure(const std::string& why) = 0;
};

class LiveMaker {
  public:
    virtual ~LiveMaker() = default;
    // Whether it could do something for another state now.
    virtual bool CanTake() const = 0;
    virtual void Take(const LiveState& state) = 0;
};

// How long a state may take, and which setting says so; no time at all for no limit.
struct LiveLimit {
    std::chrono::seconds time{0};
    std::string why;  // behind a name: "it gave no answer within 10 s, ..."

    static LiveLimit Of(const Site& site);
};

// The notes of states, which come again with each of them: those of one are said together, and only if they
// are others than those that were said last.
class LiveNotes {
  public:
    explicit LiveNotes(Site& site) : m_site(site) {}

    void Add(std::string_view text);
    // The end of a state's.
    void Say();
    void Forget() { m_notes.clear(); }
    // The first one; empty for none.
    std::string First() const;
    // Those that were not said yet, as lines.
    const std::string& Waiting() const { return m_notes; }

  private:
    static constexpr size_t kMostBytes = 16 << 10;  // of one state's notes

    Site& m_site;
    std::string m_notes;
    std::string m_said;
    bool m_isCut = false;
};

}  // namespace tavrin

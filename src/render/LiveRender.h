// SPDX-License-Identifier: Apache-2.0
// Live: a picture follows each change of the network by itself, beside all renders.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "render/LiveMaker.h"

namespace tavrin {

// A picture of the network as it stood. A plain value.
struct LivePicture {
    uint64_t id = 0;  // of the state; those of one state have one number
    std::string path;
    bool isFinal = false;
    std::chrono::milliseconds time{0};  // since the state was taken
    std::string remark;                 // what the generation has found amiss; empty for nothing
};

// Owned by the program's frame; works on the one document. Each state of the network that differs from the
// one before in what a render would be given is handed to the library's live command or, where it names none,
// to the scripts of a render; the last state wins. Renders, their work files and their history know nothing
// of it. What goes wrong ends what makes the pictures, and the next state starts it anew; three such failures
// without a picture between them switch Live off. Main thread only, and nothing here waits.
class LiveRender : private LiveAnswers {
  public:
    static constexpr int kMostFailures = 3;  // in a row

    struct Hands {
        std::function<void(const LivePicture&)> picture;
        // There is none, or no other one, and why.
        std::function<void(const std::string& text)> trouble;
        // Update is wanted: something has changed meanwhile, and can be done now.
        std::function<void()> ready;
        // It has been switched off, after trouble was told.
        std::function<void()> switchedOff;
    };
    // Session, document and site outlive it.
    LiveRender(RenderSession& session, const CTvDoc& document, Site& site, Hands hands);
    ~LiveRender() override;

    void SwitchOn();
    // Nothing of it is left but what is about to end.
    void SwitchOff();
    bool IsOn() const { return m_isOn; }

    // The network may have changed. Takes its state, now or, while a state is at work that has not shown
    // anything yet, later: `ready` then asks for another call.
    void Update();
    // Another document has come: what was said of the one before is said of it too.
    void ForgetSaid() { m_said.clear(); }

    // A state costs so much time that changes which follow each other fast had better be over first, or would
    // stop each other's pictures.
    bool WantsPause() const;
    // What the last state has cost the main thread.
    std::chrono::microseconds LastCost() const { return m_lastCost; }

  private:
    using Clock = std::chrono::steady_clock;
    struct Taken {
        WorkFiles files;
        std::string name;
        bool operator==(const Taken&) const = default;
    };

    void OnPicture(uint64_t id, const std::string& path, bool isFinal) override;
    void OnError(uint64_t id, const std::string& text, const std::string& notes) override;
    void OnDropped(uint64_t id) override;
    void OnFailure(const std::string& why) override;

    std::string WhyWaits() const;
    void TakeState();
    std::optional<Taken> Generate();
    void SayOnce(const std::string& line);
    void ChooseMaker();
    void NoteAnswer(uint64_t id);
    void AskForNext();

    RenderSession& m_session;
    const CTvDoc& m_document;
    Site& m_site;
    const Hands m_hands;
    LiveStates m_states;
    bool m_isOn = false;
    bool m_isBehind = false;  // a change waits for the maker
    int m_failures = 0;       // since the last picture
    std::optional<Taken> m_last;
    std::string m_remark;          // on it
    std::set<std::string> m_said;  // in the log
    std::map<uint64_t, Clock::time_point> m_underway;
    std::chrono::microseconds m_lastCost{0};
    std::vector<std::string> m_makerKey;  // what the maker was chosen by
    bool m_runsScripts = false;           // the maker is no live command
    std::unique_ptr<LiveMaker> m_maker;
    std::unique_ptr<LiveMaker> m_failed;  // has told of its failure, perhaps just now
};

}  // namespace tavrin

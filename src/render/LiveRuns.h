// SPDX-License-Identifier: Apache-2.0
// Live for a library without a live command: the scripts of a render, for each state anew.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "render/LiveMaker.h"
#include "site/LineChild.h"

namespace tavrin {

// Owned by LiveRender. The filter script and bin/renderit run in the directory of the state, beside all
// renders and without being waited for; a newer state stops them. Of what they say the log gets only what a
// failing one says, and that once. Main thread only.
class LiveRuns : public LiveMaker {
  public:
    LiveRuns(Site& site, LiveAnswers& answers);

    bool CanTake() const override { return true; }
    void Take(const LiveState& state) override;

  private:
    void Run(std::vector<std::string> words, const std::string& name, void (LiveRuns::*done)());
    void RunFilter();
    void RunRender();
    void Finish();
    void OnEnd(const LineEnd& end, void (LiveRuns::*done)());
    void GiveUp(const std::string& text);

    Site& m_site;
    LiveAnswers& m_answers;
    LiveLimit m_limit;
    LiveNotes m_notes;
    std::optional<LiveState> m_state;  // underway
    std::string m_step;                // the script that runs
    std::unique_ptr<LineChild> m_child;
};

}  // namespace tavrin

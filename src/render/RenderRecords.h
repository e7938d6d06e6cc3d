// SPDX-License-Identifier: Apache-2.0
// What is known of the renders of this run.
#pragma once

#include <chrono>
#include <map>
#include <string>

#include "base/Listeners.h"
#include "render/RenderRecord.h"

namespace tavrin {

struct ChildEnd;
struct Site;

// Owned by the render session, which tells it of each render. A record goes with the line that its render has
// in the history; of renders without a line the newest kUnlisted are known. Main thread only.
class RenderRecords {
  public:
    // Renders without history keep nothing that would bound them.
    static constexpr size_t kUnlisted = 20;

    explicit RenderRecords(const Site& site) : m_site(site) {}

    // Told at the start of a render, at its end, and when it is kept.
    Listeners<const RenderRecord&> afterRecord;
    // The render of this number is not known any more; where it had a line in the history, that has gone.
    Listeners<int> afterForget;

    // Null for one that is not known. Good until the next render starts.
    const RenderRecord* Find(int number) const;
    // The one that was started last; null before the first.
    const RenderRecord* Newest() const;

    // The picture that the script has left for the render, by the first of the known extensions; empty for
    // none. It may still be growing.
    std::string PictureOf(int number) const;
    // The same of any file without its extension.
    static std::string PictureAt(const std::string& base);

    // `child` is what RunScript gave for it: 0 for a render that could not start.
    void Begin(const RenderRecord& record, bool isListed, int child);
    // Of any child: one that is no render's is no matter.
    void End(const ChildEnd& end);
    void NoteKept(int number, const std::string& path);
    void Forget(int number);

  private:
    using Clock = std::chrono::steady_clock;
    struct Known {
        RenderRecord record;
        bool isListed = false;
        int child = 0;
        Clock::time_point started;
    };

    void BoundUnlisted();

    const Site& m_site;
    std::map<int, Known> m_known;  // by number
};

}  // namespace tavrin

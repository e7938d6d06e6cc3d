// SPDX-License-Identifier: Apache-2.0
// Two renders, or a render and the desk, beside each other.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "render/HistoryDocument.h"
#include "render/NetworkCompare.h"
#include "render/TakeOver.h"
#include "text/LineDifference.h"

namespace tavrin {

class RenderSession;

// Owned by who shows it. Everything is found out when it is asked for, and kept until it is out of date: a
// document of the history never is, so it is read once while it is one of the two, and stays though its file
// goes. Main thread only.
class Comparison {
  public:
    // In place of the number of a render.
    static constexpr int kDesk = 0;

    struct Needs {
        CTvDoc& document;
        DocumentHost& host;
        const RenderSession& session;
        const CCodeGen& siteCodeGen;
    };
    explicit Comparison(const Needs& needs);

    // Takes a comparison up that nothing has been found out of.
    void Choose(int older, int newer);
    int Older() const { return m_sides[0].number; }
    int Newer() const { return m_sides[1].number; }
    bool HasDesk() const { return Older() == kDesk || Newer() == kDesk; }
    // What is known of the desk is out of date.
    void DeskChanged();
    // What operators make may be another. Renders whose files are still there are read again.
    void LibraryChanged();

    // None where one of the two cannot be read.
    const std::vector<Difference>& Differences();
    // Its lines live until something is chosen or the desk changes.
    const LineDifference& Source();
    // What the user has to know of them, as far as it has been found out, a line each: of what, and what.
    std::vector<std::string> Notes() const;
    // "3 marble", "The desk". A render that is one of the two keeps its name though it leaves the history.
    std::string NameOf(int number) const;

    // Gives the desk what the render has of these, places among the differences, as one edit. What cannot be
    // given is passed over; how much was. `setOption` is to make the edit of an option of the render.
    size_t Give(const std::vector<size_t>& places, const TakeOver::SetOption& setOption);
    // Whether Give would pass over it, as far as the difference tells.
    bool CanGive(const Difference& difference) const;

  private:
    struct Side {
        int number = kDesk;
        std::string name;  // of the shader
        std::string path;  // of a render's document
        std::optional<HistoryDocument> read;
        bool hasSource = false;
    };
    void Forget(Side& side);
    HistoryDocument& Read(Side& side);
    const std::string& SourceOf(Side& side);
    Side SideOf(int number) const;

    Needs m_needs;
    HistoryReader m_reader;
    std::array<Side, 2> m_sides;
    std::optional<std::vector<Difference>> m_differences;
    std::optional<LineDifference> m_source;
};

}  // namespace tavrin

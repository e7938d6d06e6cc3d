// SPDX-License-Identifier: Apache-2.0
#include "render/Comparison.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "render/RenderSession.h"

namespace tavrin {

Comparison::Comparison(const Needs& needs) : m_needs(needs), m_reader(needs.host, needs.siteCodeGen) {}

void Comparison::Choose(int older, int newer) {
    m_sides = {SideOf(older), SideOf(newer)};
    m_differences.reset();
    m_source.reset();
}

// What is known of it already stays known.
Comparison::Side Comparison::SideOf(int number) const {
    for (const Side& side : m_sides) {
        if (side.number == number && side.read) return side;
    }
    Side side;
    side.number = number;
    if (const RenderRecord* record = m_needs.session.records.Find(number)) side.name = record->name;
    side.path = m_needs.session.DocumentOf(number);
    return side;
}

void Comparison::DeskChanged() {
    for (Side& side : m_sides) {
        if (side.number == kDesk) Forget(side);
    }
}

void Comparison::LibraryChanged() {
    for (Side& side : m_sides) {
        std::error_code isNone;
        if (side.number == kDesk || std::filesystem::exists(side.path, isNone)) Forget(side);
    }
}

void Comparison::Forget(Side& side) {
    side.read.reset();
    side.hasSource = false;
    m_differences.reset();
    m_source.reset();
}

HistoryDocument& Comparison::Read(Side& side) {
    if (side.read) return *side.read;
    if (side.number == kDesk) {
        side.read.emplace();
        side.read->network = m_reader.PictureOf(m_needs.document);
        side.read->isRead = true;
    } else {
        side.read = m_reader.Read(side.path, side.name);
        side.hasSource = true;
    }
    return *side.read;
}

const std::string& Comparison::SourceOf(Side& side) {
    HistoryDocument& document = Read(side);
    if (!std::exchange(side.hasSource, true)) {
        document.source = m_reader.SourceOf(m_needs.document, m_needs.session.ShaderName(), document.notes);
    }
    return document.source;
}

const std::vector<Difference>& Comparison::Differences() {
    if (!m_differences) {
        const HistoryDocument& older = Read(m_sides[0]);
        const HistoryDocument& newer = Read(m_sides[1]);
        m_differences.emplace();
        if (older.isRead && newer.isRead) m_differences = CompareNetworks(older.network, newer.network);
    }
    return *m_differences;
}

const LineDifference& Comparison::Source() {
    if (!m_source) {
        const std::string& older = SourceOf(m_sides[0]);
        m_source = CompareLines(older, SourceOf(m_sides[1]));
    }
    return *m_source;
}

std::vector<std::string> Comparison::Notes() const {
    std::vector<std::string> notes;
    for (const Side& side : m_sides) {
        if (!side.read) continue;
        for (const std::string& note : side.read->notes) {
            std::string line = NameOf(side.number) + ": " + note;
            if (std::find(notes.begin(), notes.end(), line) == notes.end()) notes.push_back(std::move(line));
        }
    }
    return notes;
}

std::string Comparison::NameOf(int number) const {
    if (number == kDesk) return "The desk";
    for (const Side& side : m_sides) {
        if (side.number == number) return RenderHistory::EntryText(number, side.name);
    }
    const RenderRecord* record = m_needs.session.records.Find(number);
    return record == nullptr ? std::to_string(number) : RenderHistory::EntryText(number, record->name);
}

bool Comparison::CanGive(const Difference& difference) const {
    if (!HasDesk() || Older() == Newer()) return false;
    return CanBeGiven(difference, Older() == kDesk ? difference.inNewer : difference.inOlder);
}

size_t Comparison::Give(const std::vector<size_t>& places, const TakeOver::SetOption& setOption) {
    const std::vector<Difference> differences = Differences();
    if (!HasDesk() || Older() == Newer()) return 0;
    const bool isOlderDesk = Older() == kDesk;
    const NetworkPicture given = Read(m_sides[isOlderDesk ? 1 : 0]).network;
    const NetworkPicture desk = Read(m_sides[isOlderDesk ? 0 : 1]).network;
    const EditScope edit(m_needs.document, "Take Over");
    TakeOver takeOver(m_needs.document, given, setOption);
    return static_cast<size_t>(std::count_if(places.begin(), places.end(), [&](size_t place) {
        const Difference& difference = differences.at(place);
        const uint32_t box = (isOlderDesk ? difference.inOlder : difference.inNewer).box;
        return takeOver.Give(difference, isOlderDesk ? difference.inNewer : difference.inOlder,
                             box == NetworkPicture::kNone ? "" : desk.TitleOf(desk.boxes[box]));
    }));
}

}  // namespace tavrin

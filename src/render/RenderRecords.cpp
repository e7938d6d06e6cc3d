// SPDX-License-Identifier: Apache-2.0
#include "render/RenderRecords.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <vector>

#include "base/Paths.h"
#include "site/Site.h"

namespace tavrin {

namespace {

constexpr std::array kPictureExtensions = {"png", "jpg", "jpeg", "gif", "bmp", "webp", "tif", "tiff", "ppm"};

std::string FailureOf(const ChildEnd& end) {
    return end.brokeLimit ? "limit exceeded" : "status " + std::to_string(end.exitCode);
}

}  // namespace

const RenderRecord* RenderRecords::Find(int number) const {
    const auto known = m_known.find(number);
    return known == m_known.end() ? nullptr : &known->second.record;
}

const RenderRecord* RenderRecords::Newest() const {
    return m_known.empty() ? nullptr : &m_known.rbegin()->second.record;
}

std::string RenderRecords::PictureOf(int number) const {
    const RenderRecord* record = Find(number);
    if (record == nullptr) return {};
    return PictureAt(JoinPath(m_site.WorkPath(std::to_string(number)), record->name));
}

std::string RenderRecords::PictureAt(const std::string& base) {
    for (const char* extension : kPictureExtensions) {
        std::string path = base + "." + extension;
        std::error_code isNone;
        if (std::filesystem::is_regular_file(path, isNone)) return path;
    }
    return {};
}

void RenderRecords::Begin(const RenderRecord& record, bool isListed, int child) {
    Known& known = m_known[record.number];
    known = {record, isListed, child, Clock::now()};
    afterRecord.Tell(RenderRecord(record));  // a copy: who is told may start the next
    if (child == 0) End({});
    BoundUnlisted();
}

void RenderRecords::End(const ChildEnd& end) {
    // Of renders that run there are few, and they stand at the end.
    const auto ended = std::find_if(m_known.rbegin(), m_known.rend(), [&](const auto& entry) {
        return entry.second.child == end.id && entry.second.record.state == RenderRecord::State::kRunning;
    });
    if (ended == m_known.rend()) return;
    RenderRecord& record = ended->second.record;
    const auto duration = Clock::now() - ended->second.started;
    record.duration = std::chrono::duration_cast<std::chrono::milliseconds>(duration);
    record.picture = PictureOf(record.number);
    if (end.wasStopped) {
        record.state = RenderRecord::State::kStopped;
    } else if (end.id == 0 || end.exitCode != 0 || end.brokeLimit) {
        record.state = RenderRecord::State::kFailed;
        record.failure = end.id == 0 ? "not started" : FailureOf(end);
    } else {
        record.state = RenderRecord::State::kDone;
    }
    afterRecord.Tell(RenderRecord(record));
}

void RenderRecords::NoteKept(int number, const std::string& path) {
    const auto known = m_known.find(number);
    if (known == m_known.end()) return;
    known->second.record.kept = path;
    afterRecord.Tell(RenderRecord(known->second.record));
}

void RenderRecords::Forget(int number) {
    if (m_known.erase(number) != 0) afterForget.Tell(number);
}

void RenderRecords::BoundUnlisted() {
    std::vector<int> unlisted;
    for (const auto& [number, known] : m_known) {
        if (!known.isListed) unlisted.push_back(number);
    }
    for (size_t i = 0; i + kUnlisted < unlisted.size(); ++i) Forget(unlisted[i]);
}

}  // namespace tavrin

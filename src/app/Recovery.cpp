// SPDX-License-Identifier: Apache-2.0
#include "app/Recovery.h"

#include <sys/stat.h>

#include <algorithm>

#include "app/DocumentCommands.h"
#include "base/Paths.h"
#include "document/DocumentSnapshot.h"
#include "document/TvDoc.h"
#include "site/Settings.h"
#include "text/Report.h"

namespace tavrin {

namespace {

constexpr int kLongestInterval = 24 * 60 * 60;  // seconds

bool IsAbsolute(const std::optional<std::string>& path) { return path && path->starts_with('/'); }

bool WasWrittenAfter(const std::string& path, std::time_t time) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && status.st_mtime > time;
}

}  // namespace

std::string StateDirectory(const Environment& environment) {
    const auto state = environment.Get("XDG_STATE_HOME");
    if (IsAbsolute(state)) return JoinPath(*state, "tavrin");
    const auto home = environment.Get("HOME");
    return IsAbsolute(home) ? JoinPath(*home, ".local/state/tavrin") : std::string();
}

int Recovery::IntervalOf(const Settings& settings) {
    int seconds = kDefaultInterval;
    settings.GetSettingInt("autosave.interval", seconds);
    return std::clamp(seconds, 0, kLongestInterval);
}

Recovery::Recovery(const std::string& stateDirectory, Report& report, MainThreadQueue& queue)
    : m_report(report),
      m_session(stateDirectory),
      m_directory(m_session.Directory()),
      m_writer(m_session, [this, &queue, alive = std::weak_ptr(m_alive)] {
          queue.Post([this, alive] {
              if (!alive.expired()) HeedOutcome();
          });
      }) {}

Recovery::~Recovery() = default;

RecoveryOrigin Recovery::OriginOf(const CTvDoc& document) {
    RecoveryOrigin origin;
    if (!document.Path().empty()) origin.documentPath = FullPath(document.Path());
    origin.wasCutShort = document.WasCutShort();
    origin.held = document.Origin().file->held;
    return origin;
}

bool Recovery::Update(CTvDoc& document) {
    if (!document.IsModified()) {
        Discard();
        return true;
    }
    m_writer.Settle();
    m_writer.TakeOutcome();
    std::string error;
    const bool written = m_session.Write(OriginOf(document), document.Snapshot(), error);
    Heed(written ? std::string() : error);
    return written;
}

void Recovery::UpdateBehind(CTvDoc& document, DocumentSnapshot& snapshot) {
    m_writer.Give({OriginOf(document), snapshot.Take()});
}

void Recovery::HeedOutcome() {
    if (const auto error = m_writer.TakeOutcome()) Heed(*error);
}

void Recovery::Heed(const std::string& error) {
    if (error == m_failure) return;
    m_failure = error;
    if (error.empty()) return;
    const std::string sentence =
        "unsaved work cannot be written aside to " + m_session.Folder() + ": " + error;
    m_report.LogLine("WARNING: %s", sentence.c_str());
    if (m_tellFailure) m_tellFailure(sentence);
}

void Recovery::Discard() {
    m_writer.Settle();
    m_session.Discard();
}

std::vector<Recovery::Found> Recovery::FindLeftovers() {
    std::vector<Found> leftovers;
    if (m_session.Folder().empty()) return leftovers;
    m_writer.Settle();
    for (const auto& [session, halfWritten] : m_directory.Sessions()) {
        if (session == m_session.Name()) continue;
        if (!m_claims.contains(session)) {
            FileDescriptor lock = m_directory.Claim(session);
            if (!lock) continue;
            m_claims.emplace(session, std::move(lock));
        }
        for (const std::string& path : halfWritten) ::unlink(path.c_str());
        Found found;
        if (!m_directory.HasCopy(session, found.savedAt)) {
            m_directory.RemoveFiles(session);
            m_directory.RemoveLock(session);
            m_claims.erase(session);
            continue;
        }
        RecoveryOrigin origin;
        if (m_directory.ReadOrigin(session, origin)) found.savedAt = origin.savedAt;
        if (origin.failures >= kFailuresAllowed) continue;
        found.copyPath = m_directory.CopyPath(session);
        found.documentPath = origin.documentPath;
        found.title = CTvDoc::TitleOf(origin.documentPath);
        found.wasCutShort = origin.wasCutShort;
        found.failures = origin.failures;
        found.held = origin.held;
        found.documentIsNewer = WasWrittenAfter(origin.documentPath, found.savedAt);
        leftovers.push_back(std::move(found));
    }
    std::stable_sort(leftovers.begin(), leftovers.end(),
                     [](const Found& left, const Found& right) { return left.savedAt > right.savedAt; });
    return leftovers;
}

std::string Recovery::ClaimedSession(const Found& found) const {
    for (const auto& [session, lock] : m_claims) {
        if (m_directory.CopyPath(session) == found.copyPath) return session;
    }
    return {};
}

void Recovery::Remove(const Found& found) {
    const std::string session = ClaimedSession(found);
    if (session.empty()) return;
    m_directory.RemoveFiles(session);
    m_directory.RemoveLock(session);
    m_claims.erase(session);
}

bool Recovery::Restore(const Found& found, DocumentCommands& commands, CTvDoc& document) {
    const std::string session = ClaimedSession(found);
    if (session.empty()) return false;
    // Counted beforehand: reading might end this process.
    RecoveryOrigin origin{found.documentPath, found.savedAt, found.wasCutShort, found.failures + 1,
                          found.held};
    std::string error;
    if (!m_directory.WriteOrigin(session, origin, error)) Heed(error);
    if (!commands.OpenRecovered(found.copyPath, found.documentPath, found.wasCutShort, found.held)) {
        if (origin.failures >= kFailuresAllowed)
            m_report.LogLine("WARNING: %s could not be read %d times and is offered no more",
                             found.copyPath.c_str(), origin.failures);
        return false;
    }
    if (Update(document)) {
        Remove(found);
    } else {
        --origin.failures;
        m_directory.WriteOrigin(session, origin, error);
    }
    return true;
}

}  // namespace tavrin

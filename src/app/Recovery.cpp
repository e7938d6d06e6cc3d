// SPDX-License-Identifier: Apache-2.0
#include "app/Recovery.h"

#include <sys/stat.h>

#include <algorithm>
#include <functional>
#include <string_view>

#include "app/DocumentCommands.h"
#include "base/Paths.h"
#include "document/TvDoc.h"
#include "site/Settings.h"
#include "text/Report.h"

namespace tavrin {

namespace {

constexpr int kLongestInterval = 24 * 60 * 60;  // seconds

// Without the time of writing, with which a document begins and ends.
size_t HashOf(const std::string& text) {
    std::string_view body = text;
    const size_t lineEnd = body.find('\n');
    if (lineEnd != std::string_view::npos) {
        const std::string_view header = body.substr(0, lineEnd + 1);
        body.remove_prefix(header.size());
        const size_t last = body.rfind(header);
        if (last != std::string_view::npos) body = body.substr(0, last);
    }
    return std::hash<std::string_view>()(body);
}

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

Recovery::Recovery(const std::string& stateDirectory, Report& report)
    : m_path(stateDirectory.empty() ? std::string() : JoinPath(stateDirectory, "recovery")),
      m_directory(m_path),
      m_report(report) {}

Recovery::~Recovery() {
    if (!m_session.empty() && !m_hasCopy && m_directory.IsHeld(m_session, m_lock))
        m_directory.RemoveLock(m_session);
}

bool Recovery::Update(CTvDoc& document) {
    if (!document.IsModified()) {
        Discard();
        return true;
    }
    std::string error;
    const bool written = WriteAside(document, error);
    if (!written) LogOnce(error);
    if (written) m_failureIsLogged = false;
    return written;
}

void Recovery::LogOnce(const std::string& error) {
    if (!m_failureIsLogged)
        m_report.LogLine("WARNING: unsaved work cannot be written aside to %s: %s", m_path.c_str(),
                         error.c_str());
    m_failureIsLogged = true;
}

// A session whose lock somebody has taken away protects nothing any more.
bool Recovery::HoldSession(std::string& error) {
    if (!m_session.empty() && m_directory.IsHeld(m_session, m_lock)) return true;
    if (m_path.empty()) {
        error = "the user has no home directory";
        return false;
    }
    const std::string old = m_session;
    if (!m_directory.Prepare(error) || !m_directory.Begin(m_session, m_lock, error)) return false;
    if (!old.empty()) m_directory.RemoveFiles(old);
    m_hasCopy = false;
    return true;
}

bool Recovery::WriteAside(CTvDoc& document, std::string& error) {
    if (!HoldSession(error)) return false;
    RecoveryOrigin origin;
    if (!document.Path().empty()) origin.documentPath = FullPath(document.Path());
    origin.wasCutShort = document.WasCutShort();
    origin.held = document.Origin().file->held;
    if (m_hasCopy && origin.documentPath != m_origin.documentPath) Discard();

    const std::string text = document.Snapshot();
    const size_t hash = HashOf(text);
    std::time_t writtenAt = 0;
    if (m_hasCopy && hash == m_hash && origin.wasCutShort == m_origin.wasCutShort &&
        origin.held == m_origin.held && m_directory.HasCopy(m_session, writtenAt))
        return true;
    origin.savedAt = std::time(nullptr);
    // The origin first, so that no copy is ever without it.
    if (!m_directory.WriteOrigin(m_session, origin, error) || !m_directory.WriteCopy(m_session, text, error))
        return false;
    m_hasCopy = true;
    m_origin = origin;
    m_hash = hash;
    return true;
}

void Recovery::Discard() {
    if (!m_session.empty()) m_directory.RemoveFiles(m_session);
    m_hasCopy = false;
}

std::vector<Recovery::Found> Recovery::FindLeftovers() {
    std::vector<Found> leftovers;
    if (m_path.empty()) return leftovers;
    for (const auto& [session, halfWritten] : m_directory.Sessions()) {
        if (session == m_session) continue;
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
    if (!m_directory.WriteOrigin(session, origin, error)) LogOnce(error);
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

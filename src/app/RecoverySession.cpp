// SPDX-License-Identifier: Apache-2.0
#include "app/RecoverySession.h"

#include <functional>
#include <string_view>

#include "base/Paths.h"

namespace tavrin {

namespace {

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

}  // namespace

RecoverySession::RecoverySession(const std::string& stateDirectory)
    : m_path(stateDirectory.empty() ? std::string() : JoinPath(stateDirectory, "recovery")),
      m_directory(m_path) {}

RecoverySession::~RecoverySession() {
    if (!m_name.empty() && !m_hasCopy && m_directory.IsHeld(m_name, m_lock)) m_directory.RemoveLock(m_name);
}

// One whose lock somebody has taken away protects nothing any more.
bool RecoverySession::Hold(std::string& error) {
    if (!m_name.empty() && m_directory.IsHeld(m_name, m_lock)) return true;
    if (m_path.empty()) {
        error = "the user has no home directory";
        return false;
    }
    const std::string old = m_name;
    if (!m_directory.Prepare(error) || !m_directory.Begin(m_name, m_lock, error)) return false;
    if (!old.empty()) m_directory.RemoveFiles(old);
    m_hasCopy = false;
    return true;
}

bool RecoverySession::Write(RecoveryOrigin origin, const std::string& text, std::string& error) {
    if (!Hold(error)) return false;
    if (m_hasCopy && origin.documentPath != m_origin.documentPath) Discard();
    const size_t hash = HashOf(text);
    std::time_t writtenAt = 0;
    if (m_hasCopy && hash == m_hash && origin.wasCutShort == m_origin.wasCutShort &&
        origin.held == m_origin.held && m_directory.HasCopy(m_name, writtenAt))
        return true;
    origin.savedAt = std::time(nullptr);
    // The origin first, so that no copy is ever without it.
    if (!m_directory.WriteOrigin(m_name, origin, error) || !m_directory.WriteCopy(m_name, text, error))
        return false;
    m_hasCopy = true;
    m_origin = origin;
    m_hash = hash;
    return true;
}

void RecoverySession::Discard() {
    if (!m_name.empty()) m_directory.RemoveFiles(m_name);
    m_hasCopy = false;
}

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
// What the application takes from whom: the commands of a site file that came along with the directory, and
// documents by who has written them.
#include <tuple>

#include "app/TvApp.h"
#include "base/Sha256.h"
#include "forms/FormCommands.h"
#include "forms/FormFrame.h"

namespace tavrin {

void CTvApp::SettleLocalCommands(LocalCommandsRule rule) {
    if (!m_localCommands.Any()) return;
    const std::string digest = m_localCommands.digest;
    if (rule == LocalCommandsRule::kAsk && !m_trust.Holds(TrustStore::Kind::kSiteCommands, digest)) return;
    std::string names;
    for (const std::string& line : m_localCommands.Lines()) names += (names.empty() ? "" : "; ") + line;
    const bool use = rule != LocalCommandsRule::kRefuse;
    m_site.report.LogLine("site file %s names commands, which are %s: %s", m_localCommands.path.c_str(),
                          use ? "used" : "not used", names.c_str());
    if (use) UseLocalCommands();
    m_localCommands = {};
}

void CTvApp::UseLocalCommands() {
    for (const auto& [key, value] : m_localCommands.settings) m_site.settings.Store(key, value);
    if (m_localCommands.postSave) {
        std::tie(m_exportDefaults.runPostSave, m_exportDefaults.postSaveScript) = *m_localCommands.postSave;
        // The document that the program has started with is made of these defaults.
        if (m_document != nullptr && m_document->Path().empty() && m_document->m_boxes.empty() &&
            !m_document->IsModified())
            m_document->exportOptions = m_exportDefaults;
    }
    ReleaseFormCommands(*m_form);
}

void CTvApp::AnswerForCommands(bool mayRun) {
    if (!mayRun) {
        m_site.report.LogLine("WARNING: the commands that site file %s names are not used",
                              m_localCommands.path.c_str());
        m_localCommands = {};
        return;
    }
    m_trust.Add(TrustStore::Kind::kSiteCommands, m_localCommands.digest);
    UseLocalCommands();
    m_localCommands = {};
    m_site.settings.GetSettingToken("editorcmd", m_site.directories.editorCmd);
    m_site.environment.Set("TAVRN_EDITORCMD", "\"" + m_site.directories.editorCmd + "\"");
    UpdateTitle();
}

bool CTvApp::IsOwnText(std::string_view text) const {
    return m_trust.Holds(TrustStore::Kind::kOwnText, Sha256Hex(text));
}

void CTvApp::NoteOwnText(std::string_view text) { m_trust.Add(TrustStore::Kind::kOwnText, Sha256Hex(text)); }

}  // namespace tavrin

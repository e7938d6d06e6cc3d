// SPDX-License-Identifier: Apache-2.0
#include "document/UnknownParts.h"

#include "base/Files.h"
#include "base/Paths.h"
#include "document/DocumentForm.h"
#include "library/DefinitionTexts.h"
#include "site/Site.h"
#include "text/StoredText.h"
#include "text/Tokens.h"

namespace tavrin {

namespace {

std::string Counted(size_t count, const char* one, const char* many) {
    return count == 1 ? std::string("1 ") + one : std::to_string(count) + " " + many;
}

}  // namespace

void UnknownParts::Log(size_t place, const std::string& message) {
    m_site.report.LogLine("WARNING: %s near line %d: %s", m_form.Path().c_str(), m_form.LineAt(place),
                          OneLine(message).c_str());
}

const std::string* UnknownParts::ReasonOf(std::string_view operatorName) const {
    const auto found = m_reasons.find(ToLower(operatorName));
    return found == m_reasons.end() ? nullptr : &found->second;
}

// The alert of an operator names no line of the document, so the log has all of them.
const std::string& UnknownParts::TellOperator(const std::string& name, size_t place, HeldAlerts& held) {
    std::string& reason = m_reasons[ToLower(name)];
    reason = held.All().empty() ? "the definition ends too early" : held.All().back().text;
    if (!reason.starts_with(name + ":")) reason.insert(0, name + ": ");
    const bool isFirst = m_told.empty();
    if (!m_told.insert("operator " + ToLower(name)).second) return reason;
    if (isFirst) {
        if (held.All().empty()) {
            m_site.report.AlertAt(m_form.Path(), m_form.LineAt(place), reason);
        } else {
            KeepFileOf(held.All().back());
        }
        held.Release();
    }
    Log(place, reason);
    return reason;
}

void UnknownParts::TellButton(const std::string& operatorName, size_t place, const std::string& message) {
    ++m_strayButtons;
    const bool isFirst = m_told.empty();
    if (!m_told.insert("button " + ToLower(operatorName) + " " + message).second) return;
    if (isFirst) {
        m_site.report.AlertAt(m_form.Path(), m_form.LineAt(place), message);
    } else {
        Log(place, operatorName + ": " + message);
    }
}

// The definition that was read last lies in one file, which the user may want to see beside the alert. Others
// are read after it.
void UnknownParts::KeepFileOf(const Report::Pending& alert) {
    if (alert.file != DefinitionTexts::OutputPath(m_site)) return;
    std::string unreadable;
    if (ReadWholeFile(alert.file, m_alertFileText, unreadable)) m_alertFile = alert.file;
}

void UnknownParts::TellCount() {
    std::string ignored;
    if (!m_alertFile.empty()) m_site.WriteWorkFile(PathFile(m_alertFile), m_alertFileText, ignored);
    std::string text;
    if (m_placeholders > 0) text = Counted(m_placeholders, "box is a placeholder", "boxes are placeholders");
    if (m_strayButtons > 0) {
        text += (text.empty() ? "" : " and ") + Counted(m_strayButtons, "button is unknown to its operator",
                                                        "buttons are unknown to their operators");
    }
    if (text.empty()) return;
    m_site.report.LogLine("WARNING: %s: %s; all is saved as it came", m_form.Path().c_str(), text.c_str());
}

}  // namespace tavrin

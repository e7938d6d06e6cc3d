// SPDX-License-Identifier: Apache-2.0
#include "batch/TerminalSink.h"

#include <unistd.h>

#include <cerrno>

namespace tavrin {

TerminalSink::TerminalSink(int descriptor)
    : m_descriptor(descriptor), m_isTerminal(::isatty(descriptor) == 1) {}

void TerminalSink::OnAlert(const std::string& text, const std::string&) {
    m_anyAlert = true;
    m_anyAlertInStep = true;
    if (m_silent) return;
    EndLine();
    std::string line = "ALERT: " + text;
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.pop_back();
    Print(Cleaned(line + "\n"));
}

void TerminalSink::OnLog(std::string_view text) {
    if (m_silent) return;
    if (m_quiet) return Keep(text);
    Print(Cleaned(text));
}

void TerminalSink::EndLine() {
    m_pendingReturn = false;
    Print(m_visible.End());
    if (!m_atLineStart) Print(Cleaned("\n"));
}

// What comes last says more of a failure than what came first.
void TerminalSink::Keep(std::string_view text) {
    m_kept.append(text);
    if (m_kept.size() <= 2 * kMostKept) return;
    size_t excess = m_kept.size() - kMostKept;
    if (const size_t lineEnd = m_kept.find('\n', excess); lineEnd != std::string::npos) excess = lineEnd + 1;
    m_kept.erase(0, excess);
    m_dropped += excess;
}

void TerminalSink::ShowKept() {
    const std::string text = std::move(m_kept);
    const size_t dropped = m_dropped;
    ForgetKept();
    if (m_silent) return;
    if (dropped > 0) Print("(" + std::to_string(dropped) + " bytes of the log before this are left out)\n");
    Print(Cleaned(text));
}

void TerminalSink::ForgetKept() {
    m_kept.clear();
    m_dropped = 0;
}

void TerminalSink::EndStep(bool hasFailed) {
    if (hasFailed || m_anyAlertInStep) ShowKept();
    ForgetKept();
    m_anyAlertInStep = false;
    EndLine();
}

std::string TerminalSink::Cleaned(std::string_view text) {
    if (m_isTerminal) return m_visible.Add(text);
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        const bool isUpperControl = IsUpperControl(byte);
        if (m_pendingReturn && c != '\n') result += '\r';
        m_pendingReturn = c == '\r';
        if (m_pendingReturn) continue;
        const bool isControl = (byte < ' ' && c != '\n' && c != '\t') || byte == 0x7F || isUpperControl;
        result += isControl ? '?' : c;
    }
    return result;
}

// Terminals take 0x80 to 0x9F for controls too, bare and as UTF-8; inside a longer UTF-8 character they are
// none.
bool TerminalSink::IsUpperControl(unsigned char byte) {
    if (byte >= 0xC0) {
        m_tailBytes = byte < 0xE0 ? 1 : byte < 0xF0 ? 2 : 3;
        m_tailMayBeControl = byte < 0xC3;
        return false;
    }
    const bool isTail = byte >= 0x80 && m_tailBytes > 0;
    const bool isControl = byte >= 0x80 && byte < 0xA0 && (!isTail || m_tailMayBeControl);
    m_tailBytes = isTail ? m_tailBytes - 1 : 0;
    return isControl;
}

void TerminalSink::Print(std::string_view text) {
    if (text.empty()) return;
    m_atLineStart = text.back() == '\n';
    while (!text.empty()) {
        const ssize_t count = ::write(m_descriptor, text.data(), text.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return;  // nobody listens
        text.remove_prefix(static_cast<size_t>(count));
    }
}

}  // namespace tavrin

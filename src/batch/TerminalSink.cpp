#include "batch/TerminalSink.h"

#include <unistd.h>

#include <cerrno>

namespace tavrin {

void TerminalSink::OnAlert(const std::string& text, const std::string&) {
    m_anyAlert = true;
    if (m_silent) return;
    EndLine();
    std::string line = "ALERT: " + text;
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.pop_back();
    Print(Cleaned(line + "\n"));
}

void TerminalSink::OnLog(std::string_view text) {
    if (m_quiet || m_silent) return;
    Print(Cleaned(text));
}

void TerminalSink::EndLine() {
    m_pendingReturn = false;
    if (!m_atLineStart) Print("\n");
}

std::string TerminalSink::Cleaned(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (m_pendingReturn && c != '\n') result += '\r';
        m_pendingReturn = c == '\r';
        if (m_pendingReturn) continue;
        const auto byte = static_cast<unsigned char>(c);
        const bool isControl = (byte < ' ' && c != '\n' && c != '\t') || byte == 0x7F;
        result += isControl ? '?' : c;
    }
    return result;
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

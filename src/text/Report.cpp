// SPDX-License-Identifier: Apache-2.0
#include "text/Report.h"

#include <cstdarg>
#include <cstdio>

#include "text/Archive.h"

namespace tavrin {

namespace {

__attribute__((format(printf, 1, 0))) std::string FormatList(const char* format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    std::string text(length > 0 ? static_cast<size_t>(length) : 0, '\0');
    if (length > 0) std::vsnprintf(text.data(), text.size() + 1, format, again);
    va_end(again);
    return text;
}

// What stands in files can be of any length, and so could the messages that quote it.
std::string Bounded(std::string text, size_t most) {
    if (text.size() <= most) return text;
    size_t end = most;
    while (end > 0 && (text[end] & 0xC0) == 0x80) --end;  // not within a character
    const size_t leftOut = text.size() - end;
    text.resize(end);
    return text + " ... (" + std::to_string(leftOut) + " bytes are left out here)";
}

}  // namespace

std::string FormatText(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::string text = FormatList(format, arguments);
    va_end(arguments);
    return text;
}

void Report::Alert(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::string text = FormatList(format, arguments);
    va_end(arguments);
    Raise(std::move(text), {});
}

void Report::AlertAt(const CArchive& archive, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::string message = FormatList(format, arguments);
    va_end(arguments);
    const int line = archive.LineNumber();
    // Some messages end their line.
    message.insert(message.ends_with('\n') ? message.size() - 1 : message.size(), archive.RemarkOn(line));
    AlertAt(archive.Path(), line, message);
}

void Report::AlertAt(const std::string& path, int line, const std::string& message) {
    Raise(FormatText("%s near line %d: %s", path.c_str(), line, message.c_str()), path);
}

void Report::LogLine(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::string text = FormatList(format, arguments);
    va_end(arguments);
    LogRaw(Bounded(std::move(text), kLongestLine) + "\r\n");
}

void Report::LogRaw(std::string_view text) {
    if (m_heldLog != nullptr) {
        m_heldLog->append(text);
    } else if (m_sink != nullptr && !text.empty()) {
        m_sink->OnLog(text);
    }
}

std::optional<Report::Pending> Report::TakePending() {
    if (m_alertText.empty()) return std::nullopt;
    Pending pending{std::move(m_alertText), std::move(m_alertFile)};
    m_alertText.clear();
    m_alertFile.clear();
    return pending;
}

void Report::Raise(std::string text, std::string file) {
    if (m_held != nullptr) {
        m_held->push_back({Bounded(std::move(text), kLongestAlert), std::move(file)});
        return;
    }
    m_alertText = Bounded(std::move(text), kLongestAlert);
    m_alertFile = std::move(file);
    if (m_sink != nullptr) m_sink->OnAlert(m_alertText, m_alertFile);
}

void HeldAlerts::Release() {
    m_report.m_held = m_outer;
    for (Report::Pending& alert : std::exchange(m_alerts, {}))
        m_report.Raise(std::move(alert.text), std::move(alert.file));
    m_report.m_held = &m_alerts;
}

}  // namespace tavrin

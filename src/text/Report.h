// SPDX-License-Identifier: Apache-2.0
// The one channel by which the core speaks to the user. The core never prints and never opens a box: it
// raises alerts and writes to the log, and each program decides what that looks like.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tavrin {

class CArchive;

// What a program does with reports; tests collect them. Called on the main thread.
class ReportSink {
  public:
    virtual ~ReportSink() = default;
    // An alert as it is raised. `file` is to be opened beside the message; empty for none.
    virtual void OnAlert(const std::string& text, const std::string& file) = 0;
    // Text for the log, line ends (CR LF) included. May be any part of a line.
    virtual void OnLog(std::string_view text) = 0;
};

// One for the process, made before all that reports. Main thread only.
class Report {
  public:
    // Longer ones, in bytes, are cut, and say so at their end.
    static constexpr size_t kLongestAlert = 16384;
    static constexpr size_t kLongestLine = 65536;

    // The sink must outlive its use here; without one, reports are dropped but the pending alert is kept.
    void SetSink(ReportSink* sink) { m_sink = sink; }

    // Records a message for the user, which replaces one that still waits. Code that calls this must not
    // depend on the user having seen it.
    void Alert(const char* format, ...) __attribute__((format(printf, 2, 3)));

    // The parse error of all formats: "FILE near line N: MESSAGE", with the file to be opened beside it. What
    // the archive remarks on the line stands behind.
    void AlertAt(const CArchive& archive, const char* format, ...) __attribute__((format(printf, 3, 4)));

    // The same about a place that was read earlier, with the message as it stands.
    void AlertAt(const std::string& path, int line, const std::string& message);

    // A line for the log; notes that signal trouble begin "WARNING: ".
    void LogLine(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void LogRaw(std::string_view text);

    struct Pending {
        std::string text;
        std::string file;
    };
    // The alert that waits, if any, which is then no longer pending.
    std::optional<Pending> TakePending();
    bool HasPending() const { return !m_alertText.empty(); }

  private:
    friend class HeldAlerts;
    friend class HeldLog;
    void Raise(std::string text, std::string file);

    ReportSink* m_sink = nullptr;
    std::string m_alertText;
    std::string m_alertFile;
    std::vector<Pending>* m_held = nullptr;  // where alerts go meanwhile
    std::string* m_heldLog = nullptr;        // where the log goes meanwhile
};

// While one stands, on the stack, alerts come to it and to nobody else: whoever tries what may fail decides
// what is told of it. The log goes on. They nest.
class HeldAlerts {
  public:
    explicit HeldAlerts(Report& report)
        : m_report(report), m_outer(std::exchange(report.m_held, &m_alerts)) {}
    ~HeldAlerts() { m_report.m_held = m_outer; }
    HeldAlerts(const HeldAlerts&) = delete;
    HeldAlerts& operator=(const HeldAlerts&) = delete;

    // In the order in which they were raised.
    const std::vector<Report::Pending>& All() const { return m_alerts; }
    // Raises them after all; none is left.
    void Release();

  private:
    Report& m_report;
    std::vector<Report::Pending>* m_outer;
    std::vector<Report::Pending> m_alerts;
};

// The same for the log. Nothing of it comes into the log by itself.
class HeldLog {
  public:
    explicit HeldLog(Report& report) : m_report(report), m_outer(std::exchange(report.m_heldLog, &m_text)) {}
    ~HeldLog() { m_report.m_heldLog = m_outer; }
    HeldLog(const HeldLog&) = delete;
    HeldLog& operator=(const HeldLog&) = delete;

    // All that was to be logged, line ends included.
    const std::string& Text() const { return m_text; }

  private:
    Report& m_report;
    std::string* m_outer;
    std::string m_text;
};

// printf into a string.
std::string FormatText(const char* format, ...) __attribute__((format(printf, 1, 2)));

}  // namespace tavrin

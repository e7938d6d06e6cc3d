// SPDX-License-Identifier: Apache-2.0
// Reports of a program without a window: alerts and log on standard error.
#pragma once

#include <atomic>
#include <string>

#include "text/Report.h"
#include "text/VisibleText.h"

namespace tavrin {

// Prints each alert as it is raised, on a line of its own behind "ALERT: ", and the log unless it is to be
// quiet. No text from a file can steer a terminal: where the descriptor is one, texts are shown as
// VisibleText has them. Elsewhere line ends become the platform's and bare carriage returns pass, since
// progress is shown with them; other control characters, those beyond 0x7F too, become '?'.
class TerminalSink : public ReportSink {
  public:
    static constexpr size_t kMostKept = 65536;  // bytes of the log of a quiet step

    explicit TerminalSink(int descriptor);
    ~TerminalSink() override { EndLine(); }

    void OnAlert(const std::string& text, const std::string& file) override;
    void OnLog(std::string_view text) override;

    // The log is kept, for the case that something fails.
    void SetQuiet() { m_quiet = true; }
    // A step is over. If it has failed, or an alert was raised in it, a quiet terminal shows what the log had
    // to say of it, the end of it if that was much; if not, that is forgotten.
    void EndStep(bool hasFailed);
    // What was kept says nothing that is not told elsewhere.
    void ForgetKept();
    // From here on nothing is printed: what fails now fails because the program is being stopped.
    void Silence() { m_silent = true; }
    bool AnyAlert() const { return m_anyAlert; }
    // A piece of text as it may be printed; pieces may end within a character.
    std::string Cleaned(std::string_view text);
    // What is left of it when the last piece has come.
    std::string Rest() { return m_visible.End(); }
    // Completes a line of the log that was left open.
    void EndLine();

  private:
    void Print(std::string_view text);
    void Keep(std::string_view text);
    void ShowKept();
    bool IsUpperControl(unsigned char byte);

    int m_descriptor;
    bool m_isTerminal;
    VisibleText m_visible;
    std::string m_kept;
    size_t m_dropped = 0;  // bytes that came before what is kept
    bool m_anyAlertInStep = false;
    bool m_quiet = false;
    std::atomic<bool> m_silent = false;
    bool m_anyAlert = false;
    bool m_atLineStart = true;
    bool m_pendingReturn = false;  // a carriage return whose line feed may still come
    int m_tailBytes = 0;           // of a UTF-8 character, still to come
    bool m_tailMayBeControl = false;
};

}  // namespace tavrin

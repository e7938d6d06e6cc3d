// SPDX-License-Identifier: Apache-2.0
// Reports of a program without a window: alerts and log on standard error.
#pragma once

#include <atomic>
#include <string>

#include "text/Report.h"

namespace tavrin {

// Prints each alert as it is raised, on a line of its own behind "ALERT: ", and the log unless it is to be
// quiet. Line ends become the platform's; bare carriage returns pass, since progress is shown with them;
// other control characters, those beyond 0x7F too, become '?', so that no text from a file can steer the
// terminal.
class TerminalSink : public ReportSink {
  public:
    explicit TerminalSink(int descriptor) : m_descriptor(descriptor) {}
    ~TerminalSink() override { EndLine(); }

    void OnAlert(const std::string& text, const std::string& file) override;
    void OnLog(std::string_view text) override;

    void SetQuiet() { m_quiet = true; }
    // From here on nothing is printed: what fails now fails because the program is being stopped.
    void Silence() { m_silent = true; }
    bool AnyAlert() const { return m_anyAlert; }
    // A piece of text as it may be printed; pieces may end within a character.
    std::string Cleaned(std::string_view text);
    // Completes a line of the log that was left open.
    void EndLine();

  private:
    void Print(std::string_view text);
    bool IsUpperControl(unsigned char byte);

    int m_descriptor;
    bool m_quiet = false;
    std::atomic<bool> m_silent = false;
    bool m_anyAlert = false;
    bool m_atLineStart = true;
    bool m_pendingReturn = false;  // a carriage return whose line feed may still come
    int m_tailBytes = 0;           // of a UTF-8 character, still to come
    bool m_tailMayBeControl = false;
};

}  // namespace tavrin

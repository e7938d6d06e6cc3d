// SPDX-License-Identifier: Apache-2.0
// The Log window: shows everything that the program and its child processes say.
#pragma once

#include <QElapsedTimer>
#include <QKeySequence>
#include <QTimer>
#include <functional>
#include <map>
#include <string_view>

#include "base/Profile.h"
#include "ui/log/LogBuffer.h"
#include "ui/windows/ToolWindow.h"

class QAction;

namespace tavrin {

class LogEdit;

// The log's own commands, by their numbers.
enum class LogCommand {
    kClearLog = 32892,
    kSave = 32919,
    kClear = 32922,
    kWrap = 32924,
    kCopy = 32931,
    kEditable = 32933,
    kCut = 32935,
    kPaste = 32936,
    kDelete = 32937,
};

inline constexpr int kLogTextLimit = 4'000'000;

// What tests set otherwise.
struct LogOptions {
    int textLimit = kLogTextLimit;  // characters; a full log loses its oldest lines
    std::function<void()> beep;     // sounds the warning beep; the platform's if empty
};

// Made before anything is said, and lives as long as the frame; hidden it goes on logging. What is appended
// waits in a buffer and comes into the text in slices of a few milliseconds, so that no flood of output
// makes the other windows wait. Only saving can fail, and says so.
class LogWindow : public ToolWindow {
  public:
    // `frame` may be null in tests. The profile outlives the window.
    LogWindow(QWidget* frame, Profile& profile, LogOptions options = {});

    // Any piece of output. Where a piece ends counts: see LogBuffer.
    void Append(std::string_view bytes);
    void Clear();
    // Brings everything appended into the text now. A character whose last bytes are still to come waits.
    void Flush();
    QString Text();  // flushes first
    bool IsEmpty() const;

    // Its commands and its text as they stand, for tests and measurements.
    QAction* Command(LogCommand command) const { return m_commands.at(command); }
    LogEdit& Edit() { return *m_edit; }

  private:
    QAction* Add(LogCommand command, const QString& caption, const QString& icon, const QString& tip,
                 const QKeySequence& key = {});
    void MakeCommands();
    void MakeSwitches();
    void LayOut();
    void OfferContextMenu();
    void UpdateCommands();
    void ApplySlice();
    void Save();
    void SetEditable(bool editable);

    Profile& m_profile;
    LogOptions m_options;
    LogBuffer m_buffer;
    LogEdit* m_edit;
    std::map<LogCommand, QAction*> m_commands;
    bool m_editable = false;
    QTimer m_slices;
    QElapsedTimer m_sinceBeep;
};

}  // namespace tavrin

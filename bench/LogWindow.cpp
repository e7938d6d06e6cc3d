// SPDX-License-Identifier: Apache-2.0
// Ten megabytes of output into the Log window, shown and painted: how long until all is in, and the longest
// time that the event loop was kept from a timer of one millisecond. Wants a display. The floor of the time
// is the text alone given to a plain text edit at once, hidden.
#include "ui/log/LogWindow.h"

#include <QApplication>
#include <QPlainTextEdit>
#include <algorithm>
#include <cstdio>

#include "ui/log/LogEdit.h"

namespace {

using namespace tavrin;

constexpr size_t kBytes = 10'000'000;
constexpr size_t kPipePiece = 31;
constexpr int kProgressLines = 200'000;
// What one pass of the event loop brings of a flood of pieces.
constexpr size_t kPassBytes = 64 * 1024;

class StallWatch {
  public:
    StallWatch() {
        m_clock.start();
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            m_longest = std::max(m_longest, m_clock.nsecsElapsed());
            m_clock.start();
        });
        m_timer.start(1);
    }
    double LongestMilliseconds() const { return double(m_longest) / 1e6; }

  private:
    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_longest = 0;
};

std::string Lines() {
    std::string text;
    text.reserve(kBytes + 100);
    for (int i = 0; text.size() < kBytes; ++i) {
        text += "renderer: tile " + std::to_string(i) + " done, 4711 rays, 12 shaders\n";
    }
    return text;
}

std::string Progress() {
    std::string text;
    for (int i = 0; i < kProgressLines; ++i) {
        text += "rendering frame 1 of 1, " + std::to_string(i) + " samples of 200000\r";
    }
    return text;
}

// Feeds `text` in pieces of `piece` bytes, some to each pass of the event loop, until the text holds it.
void Measure(const char* what, const std::string& text, size_t piece, bool wrap = false) {
    MemoryProfile profile;
    profile.SetInt("Log.wordwrap", wrap ? 1 : 0);
    LogWindow window(nullptr, profile);
    window.show();
    for (int i = 0; i < 20; ++i) QApplication::processEvents(QEventLoop::AllEvents, 20);
    const std::string last = "the last line of all";
    QElapsedTimer clock;
    StallWatch stalls;
    clock.start();
    for (size_t at = 0; at < text.size();) {
        const size_t passEnd = at + std::max(piece, kPassBytes);
        for (; at < text.size() && at < passEnd; at += piece) {
            window.Append(std::string_view(text).substr(at, piece));
        }
        QApplication::processEvents();
    }
    window.Append(last);
    QTextDocument& document = *window.Edit().document();
    while (!document.lastBlock().text().endsWith(QString::fromStdString(last))) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    window.Edit().viewport()->repaint();
    const double total = double(clock.nsecsElapsed()) / 1e6;
    clock.start();
    window.Clear();
    std::printf("log %-32s %8zu bytes  %8.1f ms  longest stall %5.1f ms  (clear %.1f ms)\n", what,
                text.size(), total, stalls.LongestMilliseconds(), double(clock.nsecsElapsed()) / 1e6);
}

void MeasureFloor(const std::string& text) {
    QElapsedTimer clock;
    clock.start();
    QPlainTextEdit edit;
    edit.setUndoRedoEnabled(false);
    edit.setPlainText(QString::fromUtf8(text.data(), qsizetype(text.size())));
    std::printf("log %-32s %8zu bytes  %8.1f ms\n", "floor: hidden edit, at once", text.size(),
                double(clock.nsecsElapsed()) / 1e6);
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const std::string lines = Lines();
    const std::string progress = Progress();
    MeasureFloor(lines.substr(0, kLogTextLimit));
    Measure("lines in one call", lines, lines.size());
    Measure("lines in 31-byte pieces", lines, kPipePiece);
    Measure("lines in 31-byte pieces, wrapped", lines, kPipePiece, true);
    Measure("progress in one call", progress, progress.size());
    Measure("progress in 31-byte pieces", progress, kPipePiece);
    Measure("one line in 31-byte pieces", std::string(kBytes, '.'), kPipePiece);
    Measure("one line, wrapped", std::string(kBytes, '.'), kPipePiece, true);
    return 0;
}

// SPDX-License-Identifier: Apache-2.0
// What the thread of a LineChild reads and writes.
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

#include "site/LineLife.h"
#include "text/Report.h"

namespace tavrin {

namespace {

constexpr size_t kPiece = 16 << 10;
constexpr int kPiecesAtOnce = 16;
constexpr int kPiecesAtTheEnd = 64;          // read of a child that has ended: somebody may go on writing
constexpr size_t kMostUnderway = 256 << 10;  // bytes; then the child waits for its pipe
constexpr size_t kCostOfLine = 64;           // bytes, of its way to the main thread
constexpr size_t kLongestError = 4096;       // a longer line is broken in the log

}  // namespace

bool LineLife::MayRead() const { return m_underway < kMostUnderway; }

std::optional<std::string> LineLife::Wait() {
    const bool mayRead = MayRead();
    const auto reads = [&](const Stream& stream) {
        return pollfd{mayRead ? stream.pipe.Get() : -1, POLLIN, 0};
    };
    std::array<pollfd, 5> waits = {pollfd{m_wake.Get(), POLLIN, 0}, pollfd{m_exit.Get(), POLLIN, 0},
                                   pollfd{m_writing.empty() ? -1 : m_input.Get(), POLLOUT, 0},
                                   reads(m_output), reads(m_errors)};
    ::poll(waits.data(), waits.size(), TimeToWait());
    if (waits[0].revents != 0) {
        uint64_t count = 0;
        [[maybe_unused]] const ssize_t taken = ::read(m_wake.Get(), &count, sizeof count);
    }
    if (waits[2].revents != 0) WriteWaiting();
    for (Stream* stream : {&m_output, &m_errors}) {
        const pollfd& wait = stream == &m_output ? waits[3] : waits[4];
        if (wait.revents == 0) continue;
        if (auto why = ReadAll(*stream)) return why;
    }
    return std::nullopt;
}

void LineLife::WriteWaiting() {
    const ssize_t count = ::write(m_input.Get(), m_writing.data(), m_writing.size());
    if (count > 0) {
        m_writing.erase(0, static_cast<size_t>(count));
    } else if (count < 0 && errno != EAGAIN && errno != EINTR) {
        m_writing.clear();  // it reads no more; what it owes will not come
        m_input.Close();
    }
}

// What there is of a stream now; of one that never ends a part, so that wishes are heeded.
std::optional<std::string> LineLife::ReadAll(Stream& stream) {
    std::array<char, kPiece> piece;
    for (int pieces = 0; pieces < kPiecesAtOnce && MayRead(); ++pieces) {
        const ssize_t count = ::read(stream.pipe.Get(), piece.data(), piece.size());
        if (count > 0) {
            if (auto why = TakePiece(stream, {piece.data(), static_cast<size_t>(count)})) return why;
            continue;
        }
        if (count < 0 && (errno == EAGAIN || errno == EINTR)) return std::nullopt;
        stream.pipe.Close();
        if (!stream.line.empty()) TakeLine(stream, stream.line);
        // One that is on its way out need not be ended for that.
        if (&stream == &m_output) {
            AwaitAnyExit({m_process}, kTimeToHeed);
            if (!HasExited(m_process)) return "it closed its output";
        }
        return std::nullopt;
    }
    return std::nullopt;
}

std::optional<std::string> LineLife::TakePiece(Stream& stream, std::string_view piece) {
    const bool isLog = &stream == &m_errors;
    while (!piece.empty()) {
        const size_t end = piece.find('\n');
        stream.line += piece.substr(0, end);
        const bool isTooLong = stream.line.size() > (isLog ? kLongestError : LineChild::kLongestLine);
        if (isTooLong && !isLog)
            return FormatText("it wrote a line of more than %zu KB", LineChild::kLongestLine >> 10);
        if (end != std::string_view::npos || isTooLong) TakeLine(stream, stream.line);
        if (end == std::string_view::npos) break;
        piece.remove_prefix(end + 1);
    }
    return std::nullopt;
}

void LineLife::TakeLine(const Stream& stream, std::string& line) {
    if (line.ends_with('\r')) line.pop_back();
    std::string taken = std::exchange(line, {});
    if (&stream == &m_errors) {
        taken += '\n';
        if (m_bound.Passes(taken)) PostLog(std::move(taken));
        return;
    }
    if (!m_isHeard) return;
    const size_t cost = taken.size() + kCostOfLine;
    m_underway += cost;
    ++m_posted;
    m_ground.queue.Post([life = shared_from_this(), cost, text = std::move(taken)] {
        life->Arrived(cost);
        // Who hears it may let the child go.
        if (const auto hands = life->m_hands) hands->line(text);
        ++life->m_delivered;
    });
}

void LineLife::PostLog(std::string text) {
    const size_t cost = text.size() + kCostOfLine;
    m_underway += cost;
    m_ground.queue.Post([life = shared_from_this(), cost, text = std::move(text)] {
        life->Arrived(cost);
        life->m_ground.log(text);
    });
}

// Main thread: so much is not on the way any more.
void LineLife::Arrived(size_t cost) {
    const size_t before = m_underway.fetch_sub(cost);
    if (before >= kMostUnderway && before - cost < kMostUnderway) WakeUp();
}

// The last words of a child that has ended.
void LineLife::DrainStreams() {
    std::array<char, kPiece> piece;
    for (Stream* stream : {&m_output, &m_errors}) {
        for (int pieces = 0; stream->IsOpen() && pieces < kPiecesAtTheEnd; ++pieces) {
            const ssize_t count = ::read(stream->pipe.Get(), piece.data(), piece.size());
            if (count <= 0 || TakePiece(*stream, {piece.data(), static_cast<size_t>(count)})) break;
        }
        if (!stream->line.empty()) TakeLine(*stream, stream->line);
    }
}

}  // namespace tavrin

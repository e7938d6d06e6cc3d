// SPDX-License-Identifier: Apache-2.0
#include "site/ChildOutput.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "base/FileDescriptor.h"
#include "text/Report.h"

namespace tavrin {

namespace {

std::string LeftOutLine(uint64_t bytes) {
    return FormatText(
        "WARNING: %llu bytes of output are left out here; limit.output in the site definitions sets"
        " how many megabytes are shown\n",
        static_cast<unsigned long long>(bytes));
}

// Reads what stands at this place, up to the end of the file.
std::string ReadAt(int file, uint64_t place, uint64_t size) {
    std::string text(size, '\0');
    size_t used = 0;
    while (used < text.size()) {
        const ssize_t count =
            ::pread(file, text.data() + used, text.size() - used, static_cast<off_t>(place + used));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        used += static_cast<size_t>(count);
    }
    text.resize(used);
    return text;
}

}  // namespace

bool OutputBrake::Take(std::chrono::milliseconds time) {
    std::unique_lock lock(m_mutex);
    m_changed.wait_for(lock, time, [this] { return m_underway < kMostPieces || m_isOff; });
    if (m_underway >= kMostPieces) return false;
    ++m_underway;
    return true;
}

void OutputBrake::Give() {
    {
        const std::lock_guard lock(m_mutex);
        --m_underway;
    }
    m_changed.notify_one();
}

void OutputBrake::SetOff(bool isOff) {
    {
        const std::lock_guard lock(m_mutex);
        m_isOff = isOff;
    }
    m_changed.notify_all();
}

bool OutputBrake::IsOff() const {
    const std::lock_guard lock(m_mutex);
    return m_isOff;
}

bool OutputBound::Passes(std::string_view piece) {
    if (m_kept > 0 || m_passed + piece.size() > m_most) {
        LeaveOut(piece);
        return false;
    }
    m_passed += piece.size();
    if (!piece.empty()) m_isInLine = piece.back() != '\n';
    return true;
}

void OutputBound::LeaveOut(std::string_view piece) {
    m_kept += piece.size();
    m_last += piece;
    if (m_last.size() > 2 * kLastBytes) m_last.erase(0, m_last.size() - kLastBytes);
}

std::string OutputBound::Rest() const {
    if (m_kept <= kLastBytes) return m_last;
    std::string_view last(m_last);
    last.remove_prefix(last.size() - std::min(last.size(), kLastBytes));
    // From the beginning of a line on, if there is one.
    const size_t lineEnd = last.find('\n');
    if (lineEnd != std::string_view::npos && lineEnd + 1 < last.size()) last.remove_prefix(lineEnd + 1);
    std::string rest = m_isInLine ? "\n" : "";
    rest += LeftOutLine(m_kept - last.size());
    return rest.append(last);
}

std::string OutputBound::OfFile(const std::string& path, uint64_t mostBytes) {
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!file || ::fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return {};
    const auto size = static_cast<uint64_t>(status.st_size);
    if (size <= mostBytes + kLastBytes) return ReadAt(file.Get(), 0, size);
    OutputBound bound(mostBytes);
    std::string text = ReadAt(file.Get(), 0, mostBytes);
    bound.Passes(text);
    bound.m_kept = size - mostBytes - kLastBytes;
    bound.LeaveOut(ReadAt(file.Get(), size - kLastBytes, kLastBytes));
    return text + bound.Rest();
}

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
#include "render/KeptRender.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

#include "base/FileDescriptor.h"
#include "base/FileIo.h"
#include "base/Files.h"
#include "base/Paths.h"
#include "base/ReplaceFile.h"
#include "document/TvDoc.h"
#include "render/RenderSession.h"
#include "site/Site.h"

namespace tavrin {

namespace {

constexpr int kMostNames = 10000;  // tried for one render
constexpr size_t kPieceSize = 1 << 16;

std::string ExtensionOf(const std::string& path) { return PathFile(path).substr(PathBase(path).size()); }

// Also what is a link that leads nowhere.
bool IsTaken(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0;
}

// The rest of one open file into another, of whatever size.
bool CopyRest(int from, int to) {
    std::vector<char> piece(kPieceSize);
    while (true) {
        const ssize_t count = ::read(from, piece.data(), piece.size());
        if (count == 0) return true;
        if (count < 0 && errno == EINTR) continue;
        if (count < 0 || !WriteAll(to, {piece.data(), static_cast<size_t>(count)})) return false;
    }
}

}  // namespace

// What is to be kept, looked at once: the picture may be replaced meanwhile.
struct RenderKeeper::Copy {
    std::string text;        // of the document
    FileDescriptor picture;  // open; none where the render has none
    std::string extension;   // of the picture, with its dot
    bool isOwn = false;      // the document is the user's own, and the copy what was made of it
};

const RenderRecord* RenderKeeper::Listed(int number) const {
    return m_session.History().Lists(number) ? m_session.records.Find(number) : nullptr;
}

std::string RenderKeeper::Hindrance(int number) const {
    const RenderRecord* record = Listed(number);
    return record == nullptr ? "is not in the render history" : HindranceOf(*record);
}

std::string RenderKeeper::HindranceOf(const RenderRecord& record) const {
    if (record.state == RenderRecord::State::kRunning) return "is still running";
    if (!record.kept.empty() && PathExists(record.kept)) return "was kept as " + record.kept;
    return PathExists(m_session.DocumentOf(record.number)) ? "" : "has lost its document";
}

std::string RenderKeeper::DirectoryOf(int number) const {
    const RenderRecord* record = Listed(number);
    if (record == nullptr) return {};
    const HistoryNote note = m_session.History().NoteOf(RenderHistory::EntryText(number, record->name));
    const DocumentFile* file = note.origin.file.get();
    const std::string& path = file != nullptr && file->held ? file->path : note.savedTo;
    return path.empty() ? "" : PathDir(FullPath(path));
}

std::string RenderKeeper::StemOf(int number) const {
    const RenderRecord* record = m_session.records.Find(number);
    return (record == nullptr ? "" : record->name + "-") + std::to_string(number);
}

std::optional<RenderKeeper::Copy> RenderKeeper::Take(int number) {
    const RenderRecord* record = Listed(number);
    Report& report = m_host.GetSite().report;
    if (record == nullptr) {
        report.Alert("render %d is not in the render history", number);
        return std::nullopt;
    }
    Copy copy;
    std::string error;
    const std::string document = m_session.DocumentOf(number);
    if (!ReadWholeFile(document, copy.text, error)) {
        report.Alert("unable to keep render %d: %s: %s", number, document.c_str(), error.c_str());
        return std::nullopt;
    }
    const HistoryNote note = m_session.History().NoteOf(RenderHistory::EntryText(number, record->name));
    copy.isOwn = !note.origin.isForeign && MarkOf(copy.text) == note.mark;
    const std::string picture = m_session.records.PictureOf(number);
    if (picture.empty()) return copy;
    copy.picture = FileDescriptor(::open(picture.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!copy.picture) {
        const int reason = errno;
        if (reason == ENOENT) return copy;
        report.Alert("unable to keep render %d: %s: %s", number, picture.c_str(), std::strerror(reason));
        return std::nullopt;
    }
    copy.extension = ExtensionOf(picture);
    return copy;
}

std::optional<std::string> RenderKeeper::Keep(int number, const std::string& directory) {
    const std::optional<Copy> copy = Take(number);
    if (!copy) return std::nullopt;
    const std::string stem = JoinPath(directory, StemOf(number));
    std::string document;
    int error = EEXIST;
    for (int name = 1; error == EEXIST && name <= kMostNames; ++name) {
        const std::string free = name == 1 ? stem : stem + "-" + std::to_string(name);
        document = free + m_host.GetSite().docExt;
        error = MakePair(*copy, document, copy->picture ? free + copy->extension : "");
    }
    if (error != 0) return Fail(number, document, std::strerror(error));
    return Kept(number, document, *copy);
}

// The error number: EEXIST also where one of them has just come to be there.
int RenderKeeper::MakePair(const Copy& copy, const std::string& document, const std::string& picture) {
    if (IsTaken(document) || (!picture.empty() && IsTaken(picture))) return EEXIST;
    if (!picture.empty()) {
        const int error = MakeNewFile(picture, [&copy](int file) {
            return ::lseek(copy.picture.Get(), 0, SEEK_SET) == 0 && CopyRest(copy.picture.Get(), file);
        });
        if (error != 0) return error;
    }
    const int error = MakeNewFile(document, [&copy](int file) { return WriteAll(file, copy.text); });
    if (error != 0 && !picture.empty()) ::unlink(picture.c_str());
    return error;
}

std::string RenderKeeper::PictureBeside(int number, const std::string& path) const {
    const std::string picture = m_session.records.PictureOf(number);
    return picture.empty() ? "" : PathDir(path) + PathBase(path) + ExtensionOf(picture);
}

std::optional<std::string> RenderKeeper::KeepAs(int number, const std::string& path) {
    const std::optional<Copy> copy = Take(number);
    if (!copy) return std::nullopt;
    std::string error;
    if (copy->picture) {
        const std::string picture = PathDir(path) + PathBase(path) + copy->extension;
        std::string text;
        if (!ReadOpenFile(copy->picture.Get(), text, error) || !ReplaceFile(picture, text, error))
            return Fail(number, picture, error);
    }
    if (!ReplaceFile(path, copy->text, error)) return Fail(number, path, error);
    return Kept(number, path, *copy);
}

std::optional<std::string> RenderKeeper::Kept(int number, const std::string& path, const Copy& copy) {
    // What came from elsewhere stays foreign when it is opened again.
    if (copy.isOwn) m_host.NoteOwnText(copy.text);
    m_host.GetSite().report.LogLine("kept render %d as %s%s", number, path.c_str(),
                                    copy.picture ? " with its picture" : ", which has no picture");
    m_session.records.NoteKept(number, path);
    return path;
}

std::nullopt_t RenderKeeper::Fail(int number, const std::string& path, const std::string& reason) {
    m_host.GetSite().report.Alert("unable to keep render %d as %s: %s", number, path.c_str(), reason.c_str());
    return std::nullopt;
}

std::vector<int> RenderKeeper::Unsaved() const {
    std::vector<int> numbers;
    const RenderHistory& history = m_session.History();
    auto note = history.Notes().begin();
    for (const std::string& entry : history.Entries()) {
        const bool isSaved = (note++)->isSaved;
        int number = 0;
        std::string name;
        if (isSaved || !RenderHistory::ParseEntry(entry, number, name)) continue;
        const RenderRecord* record = m_session.records.Find(number);
        if (record == nullptr || !HindranceOf(*record).empty()) continue;
        if (!m_session.records.PictureOf(number).empty()) numbers.push_back(number);
    }
    std::reverse(numbers.begin(), numbers.end());
    return numbers;
}

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
#include "view/PictureBook.h"

#include <algorithm>
#include <climits>
#include <utility>

#include "base/Paths.h"

namespace tavrin {

namespace {

using Kind = PictureEntry::Kind;
using State = PictureEntry::State;

constexpr std::chrono::milliseconds kSlice{8};   // for reading, before the user is heeded again
constexpr std::chrono::milliseconds kPoll{250};  // between two looks at a file that is growing
constexpr QSize kThumbnail(192, 128);            // twice what the strip shows, for fine displays
constexpr int64_t kLatest = 253402300799000;  // milliseconds since 1970 of the last day that a date can tell

State StateOf(const std::string& word, State otherwise) {
    if (word == "running") return State::kRunning;
    if (word == "done") return State::kDone;
    if (word == "failed") return State::kFailed;
    if (word == "stopped") return State::kStopped;
    return otherwise;
}

int NumberOf(const PictureMessage& message, const char* key = "number") {
    return int(std::clamp<int64_t>(message.Number(key).value_or(0), 0, INT_MAX));
}

bool IsBefore(const std::unique_ptr<PictureEntry>& one, const std::unique_ptr<PictureEntry>& other) {
    const bool oneIsLive = one->kind == Kind::kLive;
    const bool otherIsLive = other->kind == Kind::kLive;
    if (oneIsLive != otherIsLive) return oneIsLive;
    if (one->started != other->started) return one->started > other->started;
    return one->desk == other->desk && one->number > other->number;
}

}  // namespace

QString PictureEntry::Title() const {
    const QString shown = QString::fromStdString(name);
    if (kind == Kind::kLive) return "Live";
    return kind == Kind::kReference ? shown : QString::number(number) + " " + shown;
}

PictureBook::PictureBook(View view, size_t mostBytes)
    : m_view(std::move(view)), m_mostBytes(mostBytes), m_watch([this] { StepAll(); }) {
    m_soon.setSingleShot(true);
    m_soon.callOnTimeout([this] { StepAll(); });
    m_poll.setInterval(kPoll);
    m_poll.callOnTimeout([this] { StepAll(); });
}

PictureEntry* PictureBook::Find(const std::string& desk, int number) const {
    const auto found = std::find_if(m_entries.begin(), m_entries.end(), [&](const auto& entry) {
        return entry->kind == Kind::kRender && entry->number == number && entry->desk == desk;
    });
    return found == m_entries.end() ? nullptr : found->get();
}

PictureEntry* PictureBook::FindLive(const std::string& desk) const {
    const auto found = std::find_if(m_entries.begin(), m_entries.end(), [&](const auto& entry) {
        return entry->kind == Kind::kLive && entry->desk == desk;
    });
    return found == m_entries.end() ? nullptr : found->get();
}

void PictureBook::Take(const PictureMessage& message) {
    const std::string& verb = message.Verb();
    if (verb == "render") TakeRender(message);
    if (verb == "live") TakeLive(message);
    if (verb == "trouble") TakeTrouble(message);
    if (verb == "endlive") {
        if (PictureEntry* live = FindLive(message.Text("desk"))) Remove(*live);
    }
    if (verb == "forget") {
        if (PictureEntry* entry = Find(message.Text("desk"), NumberOf(message))) Remove(*entry);
    }
}

void PictureBook::DeskWent(const std::string& desk) {
    m_desks.erase(desk);
    for (const auto& entry : m_entries) {
        if (entry->desk != desk) continue;
        // Who would have told of its end is gone.
        if (entry->reading != nullptr) {
            entry->reading->IsComplete();
        } else if (entry->state == State::kRunning) {
            entry->state = entry->picture == nullptr ? State::kStopped : State::kDone;
        }
    }
    StepAll();
    m_view.listChanged();
}

void PictureBook::TakeRender(const PictureMessage& message) {
    const int number = NumberOf(message);
    const std::string file = message.Text("file");
    const auto find = [&]() -> PictureEntry* {
        if (number > 0) return Find(message.Text("desk"), number);
        const auto found = std::find_if(m_entries.begin(), m_entries.end(), [&](const auto& entry) {
            return entry->kind == Kind::kReference && entry->file == file;
        });
        return found == m_entries.end() ? nullptr : found->get();
    };
    if (number == 0 && file.empty()) return;
    PictureEntry* entry = find();
    const bool isNew = entry == nullptr;
    if (isNew) {
        auto made = std::make_unique<PictureEntry>();
        made->kind = number > 0 ? Kind::kRender : Kind::kReference;
        made->desk = message.Text("desk");
        made->number = number;
        made->started = QDateTime::currentDateTime();
        entry = &Add(std::move(made));
    }
    TakeWords(*entry, message);
    Sort();
    m_view.listChanged();
    (isNew ? m_view.came : m_view.changed)(*entry);
    StepAll();
}

void PictureBook::TakeWords(PictureEntry& entry, const PictureMessage& message) {
    const State before = entry.state;
    entry.state = StateOf(message.Text("state"), entry.state);
    if (message.Has("name")) entry.name = message.Text("name");
    if (message.Has("differs")) entry.differs = message.Text("differs");
    if (message.Has("text")) entry.trouble = message.Text("text");
    if (const auto started = message.Number("started"))
        entry.started = QDateTime::fromMSecsSinceEpoch(std::clamp<int64_t>(*started, 0, kLatest));
    if (const auto duration = message.Number("duration")) {
        entry.duration = std::max<int64_t>(*duration, 0);
    } else if (before == State::kRunning && entry.state != before && entry.duration == 0) {
        entry.duration = std::max<qint64>(entry.started.msecsTo(QDateTime::currentDateTime()), 0);
    }
    const std::string file = message.Text("file");
    const bool isRunning = entry.state == State::kRunning;
    const bool isOther = !file.empty() && file != entry.file;
    if (!file.empty()) entry.file = file;
    if (entry.state == State::kFailed || entry.state == State::kStopped) {
        entry.reading.reset();  // what was seen of it stays
    } else if (isOther || (entry.kind == Kind::kReference && entry.reading == nullptr)) {
        Read(entry, entry.file, isRunning);
    } else if (entry.reading != nullptr && !isRunning) {
        entry.reading->IsComplete();
    }
}

void PictureBook::TakeLive(const PictureMessage& message) {
    const std::string file = message.Text("file");
    if (file.empty()) return;
    PictureEntry* live = FindLive(message.Text("desk"));
    const bool isNew = live == nullptr;
    if (isNew) live = &AddLive(message.Text("desk"));
    live->state = message.Number("final").value_or(1) != 0 ? State::kDone : State::kRunning;
    live->waitingFile = file;
    live->waitingId = uint64_t(message.Number("id").value_or(0));
    if (isNew) {
        m_view.listChanged();
        m_view.came(*live);
    }
    StepAll();
}

void PictureBook::TakeTrouble(const PictureMessage& message) {
    PictureEntry* live = FindLive(message.Text("desk"));
    const bool isNew = live == nullptr;
    if (isNew) {
        live = &AddLive(message.Text("desk"));
        m_view.listChanged();
    }
    live->state = State::kFailed;
    live->trouble = message.Text("text");
    if (isNew) m_view.came(*live);
    m_view.changed(*live);
}

PictureEntry& PictureBook::AddLive(const std::string& desk) {
    auto made = std::make_unique<PictureEntry>();
    made->kind = Kind::kLive;
    made->desk = desk;
    made->started = QDateTime::currentDateTime();
    PictureEntry& added = Add(std::move(made));
    Sort();
    return added;
}

PictureEntry& PictureBook::Add(std::unique_ptr<PictureEntry> entry) {
    if (m_entries.size() >= kMostEntries) Remove(*m_entries.back());
    m_entries.push_back(std::move(entry));
    return *m_entries.back();
}

void PictureBook::Remove(PictureEntry& entry) {
    m_view.leaves(entry);
    std::erase_if(m_entries, [&](const auto& known) { return known.get() == &entry; });
    m_view.listChanged();
    FollowFiles();
}

void PictureBook::Sort() { std::stable_sort(m_entries.begin(), m_entries.end(), IsBefore); }

void PictureBook::Show(PictureEntry& entry) {
    entry.lastShown = ++m_looks;
    const bool isReadable = entry.state == State::kDone && !entry.file.empty() && entry.kind != Kind::kLive;
    if (entry.picture != nullptr || entry.reading != nullptr || !isReadable) return;
    Read(entry, entry.file, false);
    StepAll();
}

void PictureBook::Read(PictureEntry& entry, const std::string& file, bool mayGrow) {
    entry.reading = std::make_unique<PictureFile>(file, mayGrow);
    if (entry.state == State::kDone) entry.trouble.clear();
}

// What is shown comes first.
void PictureBook::StepAll() {
    std::vector<PictureEntry*> readings;
    for (const auto& entry : m_entries) {
        if (entry->reading == nullptr && !entry->waitingFile.empty()) {
            Read(*entry, std::exchange(entry->waitingFile, {}), false);
            entry->readingId = entry->waitingId;
        }
        if (entry->reading != nullptr) readings.push_back(entry.get());
    }
    std::stable_partition(readings.begin(), readings.end(),
                          [this](const PictureEntry* entry) { return m_view.isShown(*entry); });
    const auto end = std::chrono::steady_clock::now() + kSlice;
    bool isMoreThere = false;
    for (PictureEntry* entry : readings) {
        if (std::chrono::steady_clock::now() < end) Step(*entry);
        const bool reads = entry->reading != nullptr;
        isMoreThere = isMoreThere || !entry->waitingFile.empty() ||
                      (reads && entry->reading->Now() != PictureFile::State::kGrowing &&
                       entry->reading->Now() != PictureFile::State::kMissing);
    }
    if (isMoreThere) m_soon.start(0);
    FollowFiles();
}

void PictureBook::Step(PictureEntry& entry) {
    const PicturePtr before = entry.picture;
    const int changes = before == nullptr ? -1 : before->Changes();
    const PictureFile::State state = entry.reading->Step(kSlice);
    const bool isOver = state == PictureFile::State::kWhole || state == PictureFile::State::kFailed;
    // The live picture that is seen is replaced by a whole one only.
    const PicturePtr& read = entry.reading->Get();
    if (entry.kind != Kind::kLive && read != nullptr && read->Rows() > 0) entry.picture = read;
    if (isOver) End(entry);
    if (isOver || entry.picture != before || (before != nullptr && before->Changes() != changes))
        m_view.changed(entry);
}

void PictureBook::End(PictureEntry& entry) {
    const auto reading = std::move(entry.reading);
    if (reading->Now() == PictureFile::State::kFailed) {
        entry.trouble = reading->Trouble();
        if (entry.state == State::kRunning) entry.state = State::kStopped;
        return;
    }
    entry.picture = reading->Get();
    entry.thumbnail = entry.picture->Thumbnail(kThumbnail);
    entry.trouble.clear();
    if (entry.kind == Kind::kLive) entry.id = entry.readingId;
    if (entry.state == State::kRunning && !HasDesk(entry)) entry.state = State::kDone;
    GiveUpOldest();
}

void PictureBook::GiveUpOldest() {
    size_t bytes = 0;
    std::vector<PictureEntry*> held;
    for (const auto& entry : m_entries) {
        if (entry->picture == nullptr) continue;
        bytes += entry->picture->Bytes();
        if (entry->kind != Kind::kLive && entry->reading == nullptr && !m_view.isShown(*entry))
            held.push_back(entry.get());
    }
    std::stable_sort(held.begin(), held.end(),
                     [](const auto* one, const auto* other) { return one->lastShown < other->lastShown; });
    for (PictureEntry* entry : held) {
        if (bytes <= m_mostBytes) return;
        bytes -= entry->picture->Bytes();
        entry->picture.reset();
    }
}

void PictureBook::FollowFiles() {
    std::set<std::string> directories;
    for (const auto& entry : m_entries) {
        if (entry->reading == nullptr) continue;
        const PictureFile::State state = entry->reading->Now();
        if (state == PictureFile::State::kGrowing || state == PictureFile::State::kMissing)
            directories.insert(PathDir(entry->reading->Path()));
    }
    m_watch.Watch(directories);
    if (directories.empty()) {
        m_poll.stop();
    } else if (!m_poll.isActive()) {
        m_poll.start();
    }
}

}  // namespace tavrin

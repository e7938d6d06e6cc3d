// SPDX-License-Identifier: Apache-2.0
// All pictures that the window knows, with what is told of them.
#pragma once

#include <QDateTime>
#include <QImage>
#include <QString>
#include <QTimer>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "render/PictureMessage.h"
#include "view/FileWatch.h"
#include "view/Picture.h"
#include "view/PictureFile.h"

namespace tavrin {

// One line of the strip. Owned by the book; it stays where it is in memory until it leaves.
struct PictureEntry {
    enum class Kind { kLive, kRender, kReference };
    enum class State { kRunning, kDone, kFailed, kStopped };

    Kind kind = Kind::kRender;
    std::string desk;  // its work directory
    int number = 0;    // of a render
    State state = State::kRunning;
    std::string name;
    std::string file;
    QDateTime started;
    int64_t duration = 0;  // milliseconds; 0 where it is not known
    std::string differs;   // from the render before
    std::string trouble;   // why it failed, or why its picture cannot be shown

    PicturePtr picture;  // null while there is none, and where it was given up to save memory
    QImage thumbnail;
    uint64_t id = 0;  // of a live picture, that which is here

    // Of the file, read or being read.
    std::unique_ptr<PictureFile> reading;
    uint64_t readingId = 0;
    std::string waitingFile;  // a live picture that came meanwhile
    uint64_t waitingId = 0;
    uint64_t lastShown = 0;  // greater is later

    // What a user calls it, such as "12 marble".
    QString Title() const;
};

// Takes what desks tell, reads the files, a slice at a time, and keeps pictures in memory up to a bound:
// those that were not looked at for longest go, and are read again when they are wanted. Thumbnails stay.
// What came of a desk stays when that goes. Main thread only.
class PictureBook {
  public:
    static constexpr size_t kMostBytes = size_t{512} << 20;  // of pictures
    static constexpr size_t kMostEntries = 1000;

    // Who shows the book. Entries that are handed on may leave the book later, which `left` tells.
    struct View {
        std::function<void()> listChanged;                 // entries came, left or changed places
        std::function<void(PictureEntry&)> changed;        // what is known of one, or its picture
        std::function<void(PictureEntry&)> came;           // a new one that a user will want to see
        std::function<void(PictureEntry&)> leaves;         // it is about to go
        std::function<bool(const PictureEntry&)> isShown;  // its picture is not to be given up
    };
    explicit PictureBook(View view, size_t mostBytes = kMostBytes);

    // In the order of the strip: live ones, then the newest first.
    const std::vector<std::unique_ptr<PictureEntry>>& Entries() const { return m_entries; }
    PictureEntry* Find(const std::string& desk, int number) const;
    PictureEntry* FindLive(const std::string& desk) const;

    // A message of a desk, or of who renders for it. What is none of the book's is passed over.
    void Take(const PictureMessage& message);
    // Whether its desk can be asked for something.
    void DeskCame(const std::string& desk) { m_desks.insert(desk); }
    void DeskWent(const std::string& desk);
    bool HasDesk(const PictureEntry& entry) const { return m_desks.contains(entry.desk); }

    // The user looks at it: its picture is read again if it was given up.
    void Show(PictureEntry& entry);

  private:
    void TakeRender(const PictureMessage& message);
    void TakeLive(const PictureMessage& message);
    void TakeTrouble(const PictureMessage& message);
    void TakeWords(PictureEntry& entry, const PictureMessage& message);
    PictureEntry& AddLive(const std::string& desk);
    PictureEntry& Add(std::unique_ptr<PictureEntry> entry);
    void Remove(PictureEntry& entry);
    void Sort();
    void Read(PictureEntry& entry, const std::string& file, bool mayGrow);
    void StepAll();
    void Step(PictureEntry& entry);
    void End(PictureEntry& entry);
    void GiveUpOldest();
    void FollowFiles();

    View m_view;
    size_t m_mostBytes;
    std::vector<std::unique_ptr<PictureEntry>> m_entries;
    std::set<std::string> m_desks;
    uint64_t m_looks = 0;
    FileWatch m_watch;
    QTimer m_soon;  // more of a file is there to be read
    QTimer m_poll;  // for files that the system does not tell of
};

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
// The numbered history of renders.
#pragma once

#include <deque>
#include <string>

#include "base/Listeners.h"
#include "document/DocumentFile.h"

namespace tavrin {

struct Site;

// What is known of an entry beside its line. A plain value.
struct HistoryNote {
    DocumentOrigin origin;  // of the document that was rendered
    ContentMark mark = 0;   // of the copy that was kept of it
    bool isSaved = false;   // the document's file holds the network, or the document was saved since
    std::string savedTo{};  // where that was first, for a document that had no file
};

// Lists the renders whose document copies are kept in the work directory, and removes the oldest beyond
// the site's limit. Numbers are never used again in a process.
class RenderHistory {
  public:
    // Reads the limit from the site's settings.
    explicit RenderHistory(Site& site);

    // Puts "NUMBER NAME" on top of the list, with what is known of it. The oldest entry leaves it when there
    // are more than the limit, and its directory is removed; a directory whose name is no number is left and
    // alerted.
    void AddEntry(const std::string& text, const HistoryNote& note = {});
    // A document has been saved, which had one file before and has the other now: what was rendered of it
    // with either counts as saved.
    void NoteSaved(const DocumentFile& before, const DocumentFile& now);

    // Told the number of a render whose entry has left the list with its directory.
    Listeners<int> afterLeave;

    // Newest first.
    const std::deque<std::string>& Entries() const { return m_entries; }
    // Of each of the entries.
    const std::deque<HistoryNote>& Notes() const { return m_notes; }
    // Without a file for an entry that is not in the list.
    DocumentOrigin OriginOf(const std::string& text) const { return NoteOf(text).origin; }
    HistoryNote NoteOf(const std::string& text) const;
    // Whether the render of that number has an entry.
    bool Lists(int number) const;
    int MaxHistory() const { return m_maxHistory; }

    // The line of an entry, and back. A shader's name holds no blanks. False if the line is none.
    static std::string EntryText(int number, const std::string& name);
    static bool ParseEntry(const std::string& text, int& number, std::string& name);

  private:
    void RemoveDirectoryOf(const std::string& text);

    Site& m_site;
    int m_maxHistory = 0;
    std::deque<std::string> m_entries;
    std::deque<HistoryNote> m_notes;
};

}  // namespace tavrin

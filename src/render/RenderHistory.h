// SPDX-License-Identifier: Apache-2.0
// The numbered history of renders.
#pragma once

#include <deque>
#include <string>

#include "document/DocumentFile.h"

namespace tavrin {

struct Site;

// Lists the renders whose document copies are kept in the work directory, and removes the oldest beyond
// the site's limit. Numbers are never used again in a process.
class RenderHistory {
  public:
    // Reads the limit from the site's settings.
    explicit RenderHistory(Site& site);

    // Puts "NUMBER NAME" on top of the list, with where its document came from. The oldest entry leaves it
    // when there are more than the limit, and its directory is removed; a directory whose name is no number
    // is left and alerted.
    void AddEntry(const std::string& text, const DocumentOrigin& origin = {});

    // Newest first.
    const std::deque<std::string>& Entries() const { return m_entries; }
    // Without a file for an entry that is not in the list.
    DocumentOrigin OriginOf(const std::string& text) const;
    int MaxHistory() const { return m_maxHistory; }

    // The line of an entry, and back. A shader's name holds no blanks. False if the line is none.
    static std::string EntryText(int number, const std::string& name);
    static bool ParseEntry(const std::string& text, int& number, std::string& name);

  private:
    void RemoveDirectoryOf(const std::string& text);

    Site& m_site;
    int m_maxHistory = 0;
    std::deque<std::string> m_entries;
    std::deque<DocumentOrigin> m_origins;  // of each of the entries
};

}  // namespace tavrin

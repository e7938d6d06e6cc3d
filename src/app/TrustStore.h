// SPDX-License-Identifier: Apache-2.0
// What the user has agreed to, and what the user's own programs have written.
#pragma once

#include <set>
#include <string>
#include <string_view>

namespace tavrin {

// Digests in the file "trusted" of the state directory, which only the user can write: nothing that a
// stranger sends can be among them. One for the process, in the application; main thread only. Programs that
// run at once add to one file. Where it cannot be written, what is added holds for this run alone; a file
// that is not surely the user's own counts as empty. Nothing is reported: what is not known is asked for
// again.
class TrustStore {
  public:
    enum class Kind {
        kSiteCommands,  // the commands of a site file, by its path and its content
        kExports,       // what a document from elsewhere writes and runs, with the document's path
        kOwnText,       // the content of a document that was saved here
    };
    // Beyond it the oldest half goes. The size of some ten thousand entries.
    static constexpr size_t kLargestFile = 786432;  // bytes

    // An empty directory keeps nothing from one run to the next.
    explicit TrustStore(std::string stateDirectory) : m_directory(std::move(stateDirectory)) {}

    bool Holds(Kind kind, const std::string& digest) const;
    void Add(Kind kind, const std::string& digest);

  private:
    std::string Path() const;

    std::string m_directory;
    std::set<std::string> m_added;  // lines, in this run
};

}  // namespace tavrin

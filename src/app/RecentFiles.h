// SPDX-License-Identifier: Apache-2.0
// The documents that were opened or saved last, for the user to open again.
#pragma once

#include <string>
#include <vector>

namespace tavrin {

class Profile;

// Kept in the profile as "Recent File List/File1" (the newest) to "File4". Two paths mean the same file if
// their full paths are equal. Paths may hold any bytes: those that are not printable ASCII, and '%', stand
// there as '%' and two hexadecimal digits. The files need not exist.
class RecentFiles {
  public:
    static constexpr size_t kRecentFiles = 4;

    explicit RecentFiles(Profile& profile) : m_profile(profile) {}

    void Add(const std::string& path);
    void Remove(const std::string& path);
    // Full paths, newest first.
    std::vector<std::string> List() const;

  private:
    void Store(const std::vector<std::string>& paths);

    Profile& m_profile;
};

}  // namespace tavrin

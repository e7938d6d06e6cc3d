// SPDX-License-Identifier: Apache-2.0
// Hears of changes in directories as they happen.
#pragma once

#include <QObject>
#include <functional>
#include <map>
#include <set>
#include <string>

#include "base/FileDescriptor.h"

namespace tavrin {

// Owned by whoever wants to know. Where the system cannot tell (a file of another machine), nothing is heard:
// look now and then all the same.
class FileWatch : public QObject {
  public:
    // `changed` is called once for what has happened since it was called last.
    explicit FileWatch(std::function<void()> changed);

    // These, and no others. One that is not there is not watched.
    void Watch(const std::set<std::string>& directories);

  private:
    void Hear();

    std::function<void()> m_changed;
    FileDescriptor m_events;
    std::map<std::string, int> m_watched;
};

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
#include "view/FileWatch.h"

#include <sys/inotify.h>

#include <QSocketNotifier>

namespace tavrin {

FileWatch::FileWatch(std::function<void()> changed)
    : m_changed(std::move(changed)), m_events(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    if (!m_events) return;
    auto* notifier = new QSocketNotifier(m_events.Get(), QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] { Hear(); });
}

void FileWatch::Watch(const std::set<std::string>& directories) {
    std::erase_if(m_watched, [&](const auto& watched) {
        if (directories.contains(watched.first)) return false;
        ::inotify_rm_watch(m_events.Get(), watched.second);
        return true;
    });
    for (const std::string& directory : directories) {
        if (!m_events || m_watched.contains(directory)) continue;
        const int watch =
            ::inotify_add_watch(m_events.Get(), directory.c_str(),
                                IN_CREATE | IN_MODIFY | IN_CLOSE_WRITE | IN_MOVED_TO | IN_DELETE);
        if (watch >= 0) m_watched[directory] = watch;
    }
}

void FileWatch::Hear() {
    alignas(inotify_event) char events[4096];
    ssize_t count = 0;
    while ((count = ::read(m_events.Get(), events, sizeof events)) > 0) {
        // A directory that goes takes its watch along.
        for (ssize_t at = 0; at < count;) {
            const auto* event = reinterpret_cast<const inotify_event*>(events + at);
            if ((event->mask & IN_IGNORED) != 0)
                std::erase_if(m_watched, [&](const auto& watched) { return watched.second == event->wd; });
            at += ssize_t(sizeof *event) + event->len;
        }
    }
    m_changed();
}

}  // namespace tavrin

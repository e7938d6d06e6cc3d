// SPDX-License-Identifier: Apache-2.0
#include "LineInbox.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <stdexcept>

namespace tavrin::mray {

std::optional<std::string> LineInbox::wait() {
    while (true) {
        const std::size_t end = text_.find('\n');
        if (end != std::string::npos) {
            std::string line = text_.substr(0, end);
            text_.erase(0, end + 1);
            return line;
        }
        if (text_.size() > kLongestLine) {
            throw std::runtime_error("a request is longer than " + std::to_string(kLongestLine) +
                                     " bytes; shorten its file names");
        }
        if (!read()) {
            return std::nullopt;
        }
    }
}

bool LineInbox::hasLine(std::chrono::milliseconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    while (text_.find('\n') == std::string::npos && text_.size() <= kLongestLine) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        pollfd state{descriptor_, POLLIN, 0};
        const int count = poll(&state, 1, std::max(static_cast<int>(left.count()), 0));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0 || !read()) {
            break;
        }
    }
    return text_.find('\n') != std::string::npos;
}

bool LineInbox::read() {
    char piece[4096];
    ssize_t got = 0;
    do {
        got = ::read(descriptor_, piece, sizeof piece);
    } while (got < 0 && errno == EINTR);
    if (got > 0) {
        text_.append(piece, static_cast<std::size_t>(got));
    }
    return got > 0;
}

}  // namespace tavrin::mray

// SPDX-License-Identifier: Apache-2.0
#include "LineInbox.h"

#include <poll.h>
#include <unistd.h>

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

bool LineInbox::hasLine() {
    pollfd state{descriptor_, POLLIN, 0};
    if (text_.size() <= kLongestLine && poll(&state, 1, 0) > 0) {
        read();
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

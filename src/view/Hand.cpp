// SPDX-License-Identifier: Apache-2.0
#include "view/Hand.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <optional>

#include "base/Paths.h"
#include "render/PictureSocket.h"

namespace tavrin {

namespace {

constexpr int kWrongCall = 2;
constexpr const char* kUsage = "usage: tavrin-view --hand NUMBER NAME FILE [--growing]\n";

std::optional<PictureMessage> MessageOf(const std::vector<std::string>& words,
                                        const Environment& environment) {
    const bool isGrowing = words.size() == 4 && words[3] == "--growing";
    if (words.size() != 3 && !isGrowing) return std::nullopt;
    PictureMessage message("render");
    message.Set("number", words[0]).Set("name", words[1]).Set("file", FullPath(words[2]));
    message.Set("desk", environment.Get("TAVRN_WORKDIR").value_or(""));
    message.Set("state", isGrowing ? "running" : "done");
    const auto number = message.Number("number");
    const bool isFine = number && *number >= 0 && *number < INT_MAX && !words[2].empty();
    return isFine ? std::optional(message) : std::nullopt;
}

// Its window is nobody's child: it stays when the render and the desk have gone, and holds none of what was
// open here.
void StartWindow(const std::string& line) {
    if (::fork() != 0) return;
    ::setsid();
    if (::chdir("/") != 0) ::_exit(EXIT_FAILURE);
    const int null = ::open("/dev/null", O_RDWR);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) ::dup2(null, standard);
    ::close_range(STDERR_FILENO + 1, ~0U, 0);
    ::execl("/proc/self/exe", "tavrin-view", "--tell", line.c_str(), nullptr);
    ::_exit(EXIT_FAILURE);
}

}  // namespace

int HandPicture(const std::vector<std::string>& words, const Environment& environment) {
    const auto message = MessageOf(words, environment);
    if (!message) {
        std::fputs(kUsage, stderr);
        return kWrongCall;
    }
    if (!PictureSocket::HasDisplay(environment)) return EXIT_SUCCESS;
    if (FileDescriptor socket = PictureSocket(environment).Connect()) {
        PictureWire wire(std::move(socket));
        wire.Send(*message);
        if (wire.Flush()) return EXIT_SUCCESS;
    }
    std::string line = message->Line();
    line.pop_back();
    StartWindow(line);
    return EXIT_SUCCESS;
}

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
#include "base/Process.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <thread>

#include "base/FileDescriptor.h"
#include "base/ProcessTag.h"

namespace tavrin {

namespace {

constexpr int kSignalStatusBase = 128;
constexpr int kStatusUnknown = 127;
constexpr std::chrono::milliseconds kLookStep{5};  // where the system cannot tell of an end

// Owns the two attribute objects of posix_spawn.
class SpawnSetup {
  public:
    explicit SpawnSetup(const SpawnRequest& request) {
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawnattr_init(&attributes);
        Redirect(request.standardInput, STDIN_FILENO);
        Redirect(request.standardOutput, STDOUT_FILENO);
        Redirect(request.standardError, STDERR_FILENO);
        Redirect(request.tag, kTagDescriptor);
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        ::posix_spawnattr_setpgroup(&attributes, 0);
        ::posix_spawnattr_setsigmask(&attributes, &none);
        ::posix_spawnattr_setsigdefault(&attributes, &all);
        ::posix_spawnattr_setflags(&attributes,
                                   POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    SpawnSetup(const SpawnSetup&) = delete;
    SpawnSetup& operator=(const SpawnSetup&) = delete;
    ~SpawnSetup() {
        ::posix_spawn_file_actions_destroy(&actions);
        ::posix_spawnattr_destroy(&attributes);
    }

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;

  private:
    void Redirect(int from, int to) {
        if (from >= 0) ::posix_spawn_file_actions_adddup2(&actions, from, to);
    }
};

std::vector<char*> Pointers(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

bool IsRunnable(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && ::access(path.c_str(), X_OK) == 0;
}

}  // namespace

std::string_view SearchPathOf(const std::vector<std::string>& environment) {
    constexpr std::string_view kPrefix = "PATH=";
    for (const std::string& entry : environment) {
        if (entry.starts_with(kPrefix)) return std::string_view(entry).substr(kPrefix.size());
    }
    return {};
}

std::vector<std::string> SplitCommandLine(std::string_view line) {
    std::vector<std::string> words;
    std::string word;
    bool inQuotes = false;
    bool begun = false;
    for (const char c : line) {
        const bool blank = c == ' ' || c == '\t' || c == '\r' || c == '\n';
        if (c == '"') {
            inQuotes = !inQuotes;
            begun = true;  // "" is a word, an empty one
        } else if (blank && !inQuotes) {
            if (begun) words.push_back(std::move(word));
            word.clear();
            begun = false;
        } else {
            word += c;
            begun = true;
        }
    }
    if (begun) words.push_back(std::move(word));
    return words;
}

std::string JoinCommandLine(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words) {
        const bool isPlain = !word.empty() && word.find_first_of(" \t\r\n") == std::string::npos;
        if (!line.empty()) line += ' ';
        line += isPlain ? word : '"' + word + '"';
    }
    return line;
}

std::string FindProgram(const std::string& word, std::string_view searchPath) {
    if (word.empty()) return {};
    if (word.find('/') != std::string::npos) return word;
    for (;;) {
        const auto colon = searchPath.find(':');
        std::string candidate(searchPath.substr(0, colon));
        if (!candidate.empty()) {
            candidate += '/';
            candidate += word;
            if (IsRunnable(candidate)) return candidate;
        }
        if (colon == std::string_view::npos) return {};
        searchPath.remove_prefix(colon + 1);
    }
}

bool HasProgram(const std::string& word, std::string_view searchPath) {
    return IsRunnable(FindProgram(word, searchPath));
}

pid_t Spawn(const SpawnRequest& request, std::string& error) {
    const std::string program = request.words.empty()
                                    ? std::string()
                                    : FindProgram(request.words.front(), SearchPathOf(request.environment));
    if (program.empty()) {
        error = std::strerror(ENOENT);
        return -1;
    }
    SpawnSetup setup(request);
    pid_t child = -1;
    const int number = ::posix_spawn(&child, program.c_str(), &setup.actions, &setup.attributes,
                                     Pointers(request.words).data(), Pointers(request.environment).data());
    if (number == 0) return child;
    error = std::strerror(number);
    return -1;
}

void AwaitExit(pid_t child) {
    siginfo_t information{};
    while (::waitid(P_PID, static_cast<id_t>(child), &information, WEXITED | WNOWAIT) != 0 &&
           errno == EINTR) {
    }
}

bool HasExited(pid_t child) {
    siginfo_t information{};
    const int result = ::waitid(P_PID, static_cast<id_t>(child), &information, WEXITED | WNOHANG | WNOWAIT);
    return result != 0 || information.si_pid == child;
}

void AwaitAnyExit(const std::vector<pid_t>& children, std::chrono::milliseconds time) {
    std::vector<FileDescriptor> watched;
    std::vector<pollfd> waits;
    bool canWatch = true;
    for (const pid_t child : children) {
        watched.emplace_back(static_cast<int>(::syscall(SYS_pidfd_open, child, 0)));
        waits.push_back({watched.back().Get(), POLLIN, 0});
        canWatch = canWatch && watched.back();
    }
    if (canWatch) {
        ::poll(waits.data(), waits.size(), static_cast<int>(time.count()));
    } else if (std::none_of(children.begin(), children.end(), HasExited)) {
        std::this_thread::sleep_for(std::min(time, kLookStep));
    }
}

int WaitForEnd(pid_t child) {
    int status = 0;
    while (::waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) return kStatusUnknown;
    }
    if (WIFEXITED(status)) return WEXITSTATUS(status);
    return kSignalStatusBase + WTERMSIG(status);
}

}  // namespace tavrin

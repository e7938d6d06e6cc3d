// SPDX-License-Identifier: Apache-2.0
#include "base/ProcessTag.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <string_view>

#include "base/Paths.h"

namespace tavrin {

namespace {

constexpr unsigned kNotExecutable = 8;  // MFD_NOEXEC_SEAL, which newer systems ask for
constexpr std::string_view kLinkStart = "/memfd:";

std::string InProc(pid_t process, const char* what) {
    return "/proc/" + std::to_string(process) + "/" + what;
}

// A file of the process's directory; they have no size that could be asked for.
std::string ReadProc(pid_t process, const char* what) {
    const FileDescriptor file(::open(InProc(process, what).c_str(), O_RDONLY | O_CLOEXEC));
    std::string text(file ? 4096 : 0, '\0');
    const ssize_t count = file ? ::read(file.Get(), text.data(), text.size()) : 0;
    text.resize(count > 0 ? static_cast<size_t>(count) : 0);
    return text;
}

// What stands behind the key, in kilobytes.
uint64_t Kilobytes(std::string_view status, std::string_view key) {
    const size_t at = status.find(key);
    if (at == std::string_view::npos) return 0;
    status.remove_prefix(at + key.size());
    status.remove_prefix(std::min(status.find_first_of("0123456789"), status.size()));
    uint64_t number = 0;
    std::from_chars(status.data(), status.data() + status.size(), number);
    return number;
}

// Names of one tag end where those of all go on.
bool Carries(pid_t process, const std::string& name) {
    char link[256];
    const std::string path = InProc(process, "fd/") + std::to_string(kTagDescriptor);
    const ssize_t count = ::readlink(path.c_str(), link, sizeof link);
    std::string_view target(link, count > 0 ? static_cast<size_t>(count) : 0);
    if (!target.starts_with(kLinkStart)) return false;
    target.remove_prefix(kLinkStart.size());
    if (!target.starts_with(name)) return false;
    return name.ends_with('.') || target.substr(name.size()).starts_with(' ');
}

}  // namespace

std::string TagNames(pid_t program) { return "tavrin." + std::to_string(program) + "."; }

std::string TagName(pid_t program, int number) { return TagNames(program) + std::to_string(number); }

FileDescriptor MakeTag(const std::string& name) {
    int file = ::memfd_create(name.c_str(), MFD_CLOEXEC | kNotExecutable);
    if (file < 0 && errno == EINVAL) file = ::memfd_create(name.c_str(), MFD_CLOEXEC);
    return FileDescriptor(file);
}

std::vector<pid_t> TaggedProcesses(const std::string& name, pid_t session) {
    std::vector<pid_t> found;
    DIR* directory = ::opendir("/proc");
    if (directory == nullptr) return found;
    while (const dirent* entry = ::readdir(directory)) {
        const std::string_view text = entry->d_name;
        pid_t process = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), process);
        if (error != std::errc{} || end != text.data() + text.size() || process == ::getpid()) continue;
        if (Carries(process, name) && ::getsid(process) == session) found.push_back(process);
    }
    ::closedir(directory);
    return found;
}

bool SignalTagged(const std::string& name, pid_t session, int signal) {
    const std::vector<pid_t> processes = TaggedProcesses(name, session);
    for (const pid_t process : processes) ::kill(process, signal);
    return !processes.empty();
}

uint64_t OwnMemory(pid_t process) {
    const std::string status = ReadProc(process, "status");
    uint64_t sum = 0;
    for (const char* key : {"RssAnon:", "RssShmem:", "VmSwap:"}) sum += Kilobytes(status, key);
    return sum * 1024;
}

std::string ProgramOf(pid_t process) {
    const std::string line = ReadProc(process, "cmdline");
    return PathFile(line.substr(0, line.find('\0')));
}

}  // namespace tavrin

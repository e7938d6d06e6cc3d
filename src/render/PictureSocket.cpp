// SPDX-License-Identifier: Apache-2.0
#include "render/PictureSocket.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace tavrin {

namespace {

constexpr int kMostComing = 64;  // connections that wait for being accepted

// A directory of this user's that nobody else can enter; made if it is not there.
FileDescriptor OwnDirectory(const std::string& path) {
    ::mkdir(path.c_str(), S_IRWXU);
    FileDescriptor directory(::open(path.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status = {};
    const bool isOwn = directory && ::fstat(directory.Get(), &status) == 0 && status.st_uid == ::geteuid() &&
                       (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
    return isOwn ? std::move(directory) : FileDescriptor();
}

// Of variables, the first that says something.
std::string DisplayOf(const Environment& environment) {
    for (const char* name : {"WAYLAND_DISPLAY", "DISPLAY"}) {
        if (const std::string display = environment.Get(name).value_or(""); !display.empty()) return display;
    }
    return {};
}

// As part of a file's name.
std::string NameOf(const std::string& display) {
    constexpr size_t kLongest = 64;
    std::string name = "pictures." + display.substr(0, kLongest);
    std::replace(name.begin(), name.end(), '/', '_');
    return name;
}

// An address is short, a path may be long: it leads through the directory that is open.
sockaddr_un AddressOf(const FileDescriptor& directory, const std::string& name) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const std::string path = "/proc/self/fd/" + std::to_string(directory.Get()) + "/" + name;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    return address;
}

FileDescriptor MakeSocket() {
    return FileDescriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
}

bool IsOfThisUser(const FileDescriptor& socket) {
    ucred peer = {};
    socklen_t size = sizeof peer;
    return ::getsockopt(socket.Get(), SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == ::geteuid();
}

bool IsForLater() { return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR; }

}  // namespace

PictureSocket::PictureSocket(const Environment& environment) {
    const std::string display = DisplayOf(environment);
    if (display.empty()) return;
    m_name = NameOf(display);
    const std::string runtime = environment.Get("XDG_RUNTIME_DIR").value_or("");
    for (const std::string& path :
         {runtime + "/tavrin", "/tmp/tavrin-" + std::to_string(static_cast<unsigned>(::geteuid()))}) {
        if (runtime.empty() && path == "/tavrin") continue;
        m_directory = OwnDirectory(path);
        m_path = path;
        if (m_directory) return;
    }
}

bool PictureSocket::HasDisplay(const Environment& environment) { return !DisplayOf(environment).empty(); }

FileDescriptor PictureSocket::Connect() const {
    if (!IsPossible()) return {};
    FileDescriptor socket = MakeSocket();
    const sockaddr_un address = AddressOf(m_directory, m_name);
    const auto* generic = reinterpret_cast<const sockaddr*>(&address);
    const bool isConnected = socket && ::connect(socket.Get(), generic, sizeof address) == 0;
    return isConnected && IsOfThisUser(socket) ? std::move(socket) : FileDescriptor();
}

FileDescriptor PictureSocket::Listen() {
    if (!IsPossible()) return {};
    const std::string lock = m_name + ".lock";
    const std::string aside = m_name + ".new";
    m_lock = FileDescriptor(::openat(m_directory.Get(), lock.c_str(),
                                     O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!m_lock || ::flock(m_lock.Get(), LOCK_EX | LOCK_NB) != 0) {
        m_lock.Close();
        return {};
    }
    // Under its name it is found only once it listens.
    ::unlinkat(m_directory.Get(), aside.c_str(), 0);
    FileDescriptor socket = MakeSocket();
    const sockaddr_un address = AddressOf(m_directory, aside);
    const auto* generic = reinterpret_cast<const sockaddr*>(&address);
    const bool isThere = socket && ::bind(socket.Get(), generic, sizeof address) == 0 &&
                         ::listen(socket.Get(), kMostComing) == 0 &&
                         ::renameat(m_directory.Get(), aside.c_str(), m_directory.Get(), m_name.c_str()) == 0;
    return isThere ? std::move(socket) : FileDescriptor();
}

FileDescriptor PictureSocket::Accept(const FileDescriptor& listening) {
    for (;;) {
        FileDescriptor socket(::accept4(listening.Get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
        if (!socket || IsOfThisUser(socket)) return socket;
    }
}

bool PictureWire::Send(const PictureMessage& message, const std::string& slot) {
    std::string line = message.Line();
    if (!slot.empty()) {
        // The first may be underway.
        const auto begin = m_waiting.begin() + (m_sent > 0 ? 1 : 0);
        const auto older =
            std::find_if(begin, m_waiting.end(), [&](const auto& w) { return w.slot == slot; });
        if (older != m_waiting.end()) {
            m_bytes -= older->line.size();
            m_waiting.erase(older);
        }
    }
    if (m_bytes + line.size() > kMostWaiting) return false;
    m_bytes += line.size();
    m_waiting.push_back({slot, std::move(line)});
    return true;
}

bool PictureWire::Flush() {
    while (!m_waiting.empty()) {
        const std::string& line = m_waiting.front().line;
        const ssize_t count =
            ::send(m_socket.Get(), line.data() + m_sent, line.size() - m_sent, MSG_NOSIGNAL);
        if (count < 0) return IsForLater();
        m_sent += static_cast<size_t>(count);
        if (m_sent < line.size()) continue;
        m_bytes -= line.size();
        m_sent = 0;
        m_waiting.pop_front();
    }
    return true;
}

bool PictureWire::Receive() {
    char piece[16 << 10];
    const ssize_t count = ::recv(m_socket.Get(), piece, sizeof piece, 0);
    if (count < 0) return IsForLater();
    m_reader.Add({piece, static_cast<size_t>(count)});
    return count > 0;
}

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
// Where the picture window listens, and a connection to it: nothing here ever waits.
#pragma once

#include <deque>
#include <optional>
#include <string>

#include "base/Environment.h"
#include "base/FileDescriptor.h"
#include "render/PictureMessage.h"

namespace tavrin {

// The socket of this user's picture window on this display. It lies in a directory of the user's own,
// "$XDG_RUNTIME_DIR/tavrin", else "/tmp/tavrin-UID", whose owner and permissions are looked at: nobody else
// can listen there or connect.
class PictureSocket {
  public:
    // Makes the directory. Where there is no display, or no such directory can be had, there is no socket:
    // all below fails quietly.
    explicit PictureSocket(const Environment& environment);

    // Whether there is a display to show a window on.
    static bool HasDisplay(const Environment& environment);

    bool IsPossible() const { return static_cast<bool>(m_directory); }
    // Changes in it tell that a window has come or gone.
    const std::string& Directory() const { return m_path; }

    // A connection to the window; none if there is no window.
    FileDescriptor Connect() const;
    // Makes this process the window's: the socket that it is to accept connections from. None if another one
    // is, or if it cannot be. What a process that was killed has left is cleared away.
    FileDescriptor Listen();
    // The next who has come, of this user; none if nobody has.
    static FileDescriptor Accept(const FileDescriptor& listening);

  private:
    std::string m_path;
    std::string m_name;
    FileDescriptor m_directory;
    FileDescriptor m_lock;  // held by the process that has the window
};

// One end of a connection. What the system does not take at once waits here, up to a bound.
class PictureWire {
  public:
    static constexpr size_t kMostWaiting = 256 << 10;  // bytes

    explicit PictureWire(FileDescriptor socket) : m_socket(std::move(socket)) {}

    int Descriptor() const { return m_socket.Get(); }
    // False if so much waits already that this message was dropped. One that waits under the same `slot` is
    // superseded by this one; no slot, no such.
    bool Send(const PictureMessage& message, const std::string& slot = {});
    // Hands on what the system takes now. False if the other end has gone.
    bool Flush();
    bool IsWaiting() const { return !m_waiting.empty(); }

    // Reads what has come. False if the other end has gone; what came before is still to be had.
    bool Receive();
    std::optional<PictureMessage> Next() { return m_reader.Next(); }

  private:
    struct Waiting {
        std::string slot;
        std::string line;
    };

    FileDescriptor m_socket;
    std::deque<Waiting> m_waiting;
    size_t m_sent = 0;   // of the first line
    size_t m_bytes = 0;  // of all lines
    PictureMessageReader m_reader;
};

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
// The window's end of the line to the desks.
#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "render/PictureSocket.h"

namespace tavrin {

// Takes connections and hands on what comes over them. A connection that says "hello" is a desk's, until it
// ends; others only leave a word. One that does not read what it is told is told no more.
class PictureServer : public QObject {
  public:
    struct Hands {
        std::function<void(const PictureMessage&)> take;
        std::function<void(const std::string& desk)> came;
        std::function<void(const std::string& desk)> went;
    };
    PictureServer(FileDescriptor listening, Hands hands);
    ~PictureServer() override;

    // Tells a desk, if it is there.
    void Tell(const std::string& desk, const PictureMessage& message);

  private:
    struct Connection;
    static constexpr size_t kMostConnections = 64;

    void Accept();
    void Receive(Connection& connection);
    void Take(Connection& connection, const PictureMessage& message);
    void End(Connection& connection);

    FileDescriptor m_listening;
    Hands m_hands;
    std::vector<std::unique_ptr<Connection>> m_connections;
};

}  // namespace tavrin

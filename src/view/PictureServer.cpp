// SPDX-License-Identifier: Apache-2.0
#include "view/PictureServer.h"

#include <QSocketNotifier>
#include <algorithm>

namespace tavrin {

struct PictureServer::Connection {
    explicit Connection(FileDescriptor socket)
        : wire(std::move(socket)),
          readable(wire.Descriptor(), QSocketNotifier::Read),
          writable(wire.Descriptor(), QSocketNotifier::Write) {
        writable.setEnabled(false);
    }

    PictureWire wire;
    std::string desk;  // empty: not a desk's
    QSocketNotifier readable;
    QSocketNotifier writable;
};

PictureServer::PictureServer(FileDescriptor listening, Hands hands)
    : m_listening(std::move(listening)), m_hands(std::move(hands)) {
    auto* notifier = new QSocketNotifier(m_listening.Get(), QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] { Accept(); });
}

PictureServer::~PictureServer() = default;

void PictureServer::Accept() {
    for (FileDescriptor socket; (socket = PictureSocket::Accept(m_listening));) {
        if (m_connections.size() >= kMostConnections) continue;
        m_connections.push_back(std::make_unique<Connection>(std::move(socket)));
        Connection& connection = *m_connections.back();
        connect(&connection.readable, &QSocketNotifier::activated, this,
                [this, &connection] { Receive(connection); });
        connect(&connection.writable, &QSocketNotifier::activated, this, [&connection] {
            connection.wire.Flush();
            connection.writable.setEnabled(connection.wire.IsWaiting());
        });
    }
}

void PictureServer::Receive(Connection& connection) {
    const bool isThere = connection.wire.Receive();
    while (const auto message = connection.wire.Next()) Take(connection, *message);
    if (!isThere) End(connection);
}

void PictureServer::Take(Connection& connection, const PictureMessage& message) {
    if (message.Verb() != "hello") return m_hands.take(message);
    if (!connection.desk.empty()) return;
    connection.desk = message.Text("desk");
    if (!connection.desk.empty()) m_hands.came(connection.desk);
}

void PictureServer::End(Connection& connection) {
    connection.readable.setEnabled(false);
    connection.writable.setEnabled(false);
    const auto found = std::find_if(m_connections.begin(), m_connections.end(),
                                    [&](const auto& known) { return known.get() == &connection; });
    // It goes when its own notifier, whose call this may be, has returned.
    std::shared_ptr<Connection> gone(std::move(*found));
    m_connections.erase(found);
    QMetaObject::invokeMethod(
        this, [gone] {}, Qt::QueuedConnection);
    if (!gone->desk.empty()) m_hands.went(gone->desk);
}

void PictureServer::Tell(const std::string& desk, const PictureMessage& message) {
    for (const auto& connection : m_connections) {
        if (connection->desk != desk || !connection->wire.Send(message)) continue;
        connection->wire.Flush();
        connection->writable.setEnabled(connection->wire.IsWaiting());
    }
}

}  // namespace tavrin

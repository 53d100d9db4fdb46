#pragma once

#include <QDir>
#include <QHash>
#include <QTcpServer>

#include "base/outcome.h"

namespace Tamrix {

/// Shows the folder of a trace to browsers on this machine, while a run writes it or later: HTTP on
/// the loopback, reading only. Needs the event loop of its thread.
///
/// Only the files that a trace has are given; requests that name another host are refused, so that
/// no page from elsewhere can read the trace by a name of its own for this machine.
class TraceServer : public QObject {
public:
    /// A connection is closed when it is older than `patience`, in milliseconds.
    explicit TraceServer(const QString& folder, QObject* parent = nullptr, int patience = 60000);

    /// Listens on 127.0.0.1; port 0 takes any that is free. Fails with the system's reason.
    Outcome<> listen(quint16 port);
    quint16 port() const { return m_server.serverPort(); }

private:
    void read(QTcpSocket* socket);
    void answer(QTcpSocket* socket, const QByteArray& head);

    struct Request {
        /// What the client has sent so far.
        QByteArray head;
        bool isAnswered = false;
    };

    QDir m_folder;
    int m_patience;
    QTcpServer m_server;
    QHash<QTcpSocket*, Request> m_requests;
};

}  // namespace Tamrix

#pragma once

#include <poll.h>

#include <QByteArray>
#include <functional>
#include <map>
#include <vector>

#include "runner/relay/relaymessages.h"

namespace Tamrix::Relay {

/// The connections of agents at one end of the way: bytes of sockets become frames, and back.
/// Nothing waits.
class Links {
public:
    explicit Links(std::function<void(const Frame&)> send) : m_send(std::move(send)) {}
    ~Links();
    Links(const Links&) = delete;
    Links& operator=(const Links&) = delete;

    /// Takes a connected socket over.
    void add(quint32 number, int descriptor);
    /// A frame that is of a link: Data or Close. Frames of links that have ended are passed over.
    void take(const Frame& frame);

    /// Appends what is to be polled; the same vector, polled, goes to work().
    void watch(std::vector<pollfd>* watched, bool isReading) const;
    void work(const std::vector<pollfd>& polled);

private:
    struct Link {
        int descriptor = -1;
        QByteArray queued;
        /// The other end has closed it: what is queued is still written.
        bool isClosing = false;
    };
    using Map = std::map<quint32, Link>;

    /// False when the link is to go.
    bool flush(Link& link) const;
    bool read(quint32 number, Link& link) const;
    Map::iterator drop(Map::iterator link);

    std::function<void(const Frame&)> m_send;
    Map m_links;
};

}  // namespace Tamrix::Relay

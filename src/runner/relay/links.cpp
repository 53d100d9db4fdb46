#include "runner/relay/links.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace Tamrix::Relay {

Links::~Links() {
    for (const auto& [number, link] : m_links)
        ::close(link.descriptor);
}

void Links::add(quint32 number, int descriptor) {
    ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) | O_NONBLOCK);
    if (!m_links.emplace(number, Link{descriptor, {}, false}).second)
        ::close(descriptor);
}

Links::Map::iterator Links::drop(Map::iterator link) {
    ::close(link->second.descriptor);
    return m_links.erase(link);
}

void Links::take(const Frame& frame) {
    const auto found = m_links.find(frame.link);
    if (found == m_links.end())
        return;
    Link& link = found->second;
    link.queued += frame.body;
    link.isClosing = link.isClosing || frame.type == Type::Close;
    if (flush(link))
        return;
    if (!link.isClosing)
        m_send({Type::Close, frame.link, {}});
    drop(found);
}

bool Links::flush(Link& link) const {
    while (!link.queued.isEmpty()) {
        const ssize_t size =
            ::send(link.descriptor, link.queued.constData(),
                   static_cast<size_t>(link.queued.size()), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (size < 0 && errno == EINTR)
            continue;
        if (size < 0)
            return errno == EAGAIN;
        link.queued.remove(0, static_cast<int>(size));
    }
    return !link.isClosing;
}

bool Links::read(quint32 number, Link& link) const {
    std::array<char, 65536> buffer;
    const ssize_t size = ::recv(link.descriptor, buffer.data(), buffer.size(), MSG_DONTWAIT);
    if (size < 0)
        return errno == EAGAIN || errno == EINTR;
    if (size == 0)
        return false;
    m_send({Type::Data, number, QByteArray(buffer.data(), static_cast<int>(size))});
    return true;
}

void Links::watch(std::vector<pollfd>* watched, bool isReading) const {
    for (const auto& [number, link] : m_links) {
        const int events =
            (isReading && !link.isClosing ? POLLIN : 0) | (link.queued.isEmpty() ? 0 : POLLOUT);
        watched->push_back({link.descriptor, static_cast<short>(events), 0});
    }
}

void Links::work(const std::vector<pollfd>& polled) {
    for (auto link = m_links.begin(); link != m_links.end();) {
        const auto seen = std::find_if(polled.begin(), polled.end(), [&link](const pollfd& each) {
            return each.fd == link->second.descriptor;
        });
        const int events = seen == polled.end() ? 0 : seen->revents;
        bool isUp = (events & POLLOUT) == 0 || flush(link->second);
        if (isUp && (events & (POLLIN | POLLHUP | POLLERR)) != 0 && !link->second.isClosing)
            isUp = read(link->first, link->second);
        if (isUp) {
            ++link;
            continue;
        }
        if (!link->second.isClosing)
            m_send({Type::Close, link->first, {}});
        link = drop(link);
    }
}

}  // namespace Tamrix::Relay

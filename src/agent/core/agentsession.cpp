#include "agent/core/agentsession.h"

#include <unistd.h>

#include <QCoreApplication>
#include <QGuiApplication>
#include <QSysInfo>
#include <QWindow>
#include <algorithm>
#include <cstdio>
#include <tuple>

#include "agent/core/guarded.h"
#include "agent/core/toolkitlibraries.h"

namespace Tamrix::Agent {

namespace {

/// So many bytes are kept for a runner that does not read, before the application waits for it.
constexpr int mostQueued = 16 * 1024 * 1024;

AgentSession* s_session = nullptr;

/// The answer to one request over the session, which may end before the request does.
class FrameResponder : public Responder {
public:
    FrameResponder(AgentSession* session, quint32 sequence, quint64 number)
        : m_session(session), m_sequence(sequence), m_number(number) {}
    FrameResponder(const FrameResponder&) = delete;
    FrameResponder& operator=(const FrameResponder&) = delete;
    ~FrameResponder() override {
        if (!m_isAnswered)
            FrameResponder::fail(FailureKind::Failed,
                                 QStringLiteral("the request was not answered"));
        FrameResponder::finish();
    }

    void reply(const QByteArray& body) override { answer(Wire::MessageType::Reply, body); }
    void fail(FailureKind kind, const QString& text) override {
        answer(Wire::MessageType::Failure, Wire::encode(Wire::Failure{kind, text}));
    }
    void miss(const Wire::Missed& missed) override {
        answer(Wire::MessageType::Missed, Wire::encode(missed));
    }
    void finish() override {
        if (m_session)
            m_session->finish(m_number);
    }
    bool isWanted() const override { return m_session && m_session->isOpen(); }

private:
    void answer(Wire::MessageType type, const QByteArray& body) {
        if (m_isAnswered)
            return;
        m_isAnswered = true;
        if (m_session)
            m_session->answer(m_sequence, type, body);
    }

    QPointer<AgentSession> m_session;
    quint32 m_sequence;
    quint64 m_number;
    bool m_isAnswered = false;
};

}  // namespace

Session* Session::self() {
    return s_session;
}

AgentSession::AgentSession(int descriptor, const QString& token) : m_channel(descriptor) {
    s_session = this;
    m_notifier = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] { read(); });
    m_writable = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Write);
    m_writable->setEnabled(false);
    connect(m_writable.get(), &QSocketNotifier::activated, this, [this] { watchQueue(); });
    sayHello(token);
}

AgentSession::~AgentSession() {
    s_session = nullptr;
}

void AgentSession::sayHello(const QString& token) {
    Wire::Hello hello;
    hello.token = token;
    hello.pid = ::getpid();
    hello.parentPid = ::getppid();
    hello.program = QCoreApplication::applicationFilePath();
    hello.arguments = QCoreApplication::arguments().mid(1);
    hello.qtVersion = QString::fromLatin1(qVersion());
    hello.platform = QGuiApplication::platformName();
    hello.osName = QSysInfo::prettyProductName();
    m_channel.sendBody(0, Wire::MessageType::Hello, hello);
    if (!m_channel.isOpen())
        goSilent();
}

void AgentSession::read() {
    const bool isOpen = m_channel.receive();
    while (std::optional<Wire::Frame> frame = m_channel.takeFrame()) {
        if (!m_isWelcome)
            takeHandshake(*frame);
        else if (frame->type == Wire::MessageType::Ping)
            answer(frame->sequence, Wire::MessageType::Reply, QByteArray());
        else
            m_requests.enqueue(*frame);
    }
    if (!isOpen || !m_channel.isOpen())
        goSilent();
    else
        scheduleNext();
}

void AgentSession::takeHandshake(const Wire::Frame& frame) {
    if (frame.type == Wire::MessageType::Welcome) {
        m_isWelcome = true;
        return;
    }
    Wire::Text refusal;
    if (frame.type != Wire::MessageType::Refusal || !Wire::decode(frame.body, &refusal))
        refusal.text = QStringLiteral("what answered is no runner");
    std::fprintf(stderr, "tamrixagent: not let in: %s\n", qPrintable(refusal.text));
    m_channel.close();
}

void AgentSession::goSilent() {
    m_channel.close();
    m_requests.clear();
    for (std::unique_ptr<QSocketNotifier>* const notifier : {&m_notifier, &m_writable}) {
        if (!*notifier)
            continue;
        (*notifier)->setEnabled(false);
        // It may be the one that called.
        notifier->release()->deleteLater();
    }
}

void AgentSession::scheduleNext() {
    if (m_isScheduled || m_current != 0 || m_requests.isEmpty())
        return;
    m_isScheduled = true;
    QMetaObject::invokeMethod(
        this, [this] { workOnNext(); }, Qt::QueuedConnection);
}

void AgentSession::workOnNext() {
    m_isScheduled = false;
    if (m_current != 0 || m_requests.isEmpty())
        return;
    loadToolkitLibraries(this);
    const Wire::Frame frame = m_requests.dequeue();
    m_current = ++m_lastNumber;
    auto responder = std::make_shared<FrameResponder>(this, frame.sequence, m_current);
    const Handler handler = m_handlers.value(static_cast<int>(frame.type));
    if (!handler) {
        responder->fail(FailureKind::Failed, QStringLiteral("the agent knows no request of type %1")
                                                 .arg(static_cast<int>(frame.type)));
        return;
    }
    guarded(responder, [&] { handler(frame.body, responder); });
}

void AgentSession::answer(quint32 sequence, Wire::MessageType type, const QByteArray& body) {
    if (m_channel.isOpen() && !m_channel.send(sequence, type, body))
        goSilent();
}

void AgentSession::finish(quint64 number) {
    if (m_current != number)
        return;
    m_current = 0;
    scheduleNext();
}

void AgentSession::setHandler(Wire::MessageType type, const Handler& handler) {
    m_handlers.insert(static_cast<int>(type), handler);
}

void AgentSession::sendEvent(const Wire::EventFired& event) {
    if (m_isWelcome)
        answer(0, Wire::MessageType::EventFired, Wire::encode(event));
}

void AgentSession::sendObservation(const Wire::Observation& observation) {
    if (!m_isWelcome)
        return;
    const QByteArray body = Wire::encode(observation);
    // A person does not wait for a runner that is busy.
    if (m_channel.queuedSize() > mostQueued)
        answer(0, Wire::MessageType::Observed, body);
    else if (m_channel.isOpen() && m_channel.enqueue(0, Wire::MessageType::Observed, body))
        watchQueue();
    else
        goSilent();
}

void AgentSession::watchQueue() {
    if (m_channel.flush())
        m_writable->setEnabled(m_channel.hasQueued());
    else
        goSilent();
}

void AgentSession::addToolkit(std::unique_ptr<Toolkit> toolkit) {
    m_toolkits.push_back(std::move(toolkit));
}

Element AgentSession::element(QObject* object) const {
    if (!object)
        return {};
    for (auto toolkit = m_toolkits.crbegin(); toolkit != m_toolkits.crend(); ++toolkit) {
        if ((*toolkit)->knows(object))
            return (*toolkit)->element(object);
    }
    return {};
}

/// The way down to an element that has no window yet, as a menu that was never opened: the native
/// window of the object that all is below, then the places among the children.
QVector<int> AgentSession::pathTo(const Element& element, const QWindowList& windows) const {
    QVector<int> path;
    QObject* object = element.object;
    for (; object && object->parent(); object = object->parent())
        path.prepend(object->parent()->children().indexOf(object));
    const Element root = object ? this->element(object) : Element();
    path.prepend(root.isNull() ? -1 : windows.indexOf(root.toolkit->nativeWindow(root)));
    return path;
}

QVector<Element> AgentSession::topLevels() const {
    QVector<Element> elements;
    for (const auto& toolkit : m_toolkits)
        toolkit->topLevels(&elements);
    // Native windows are listed in the order in which they were made, which is at the first
    // showing. What has none is told apart by what does not change from run to run.
    const QWindowList windows = QGuiApplication::allWindows();
    struct Place {
        Element element;
        int window;
        QString type;
        QString name;
        QVector<int> path;
    };
    std::vector<Place> places;
    places.reserve(static_cast<size_t>(elements.size()));
    for (const Element& each : elements) {
        const auto index = windows.indexOf(each.toolkit->nativeWindow(each));
        const auto window = static_cast<int>(index < 0 ? windows.size() : index);
        places.push_back({each, window, each.toolkit->typeName(each), each.toolkit->name(each),
                          pathTo(each, windows)});
    }
    std::stable_sort(places.begin(), places.end(), [](const Place& left, const Place& right) {
        return std::tie(left.window, left.type, left.name, left.path) <
               std::tie(right.window, right.type, right.name, right.path);
    });
    elements.clear();
    for (const Place& place : places)
        elements.append(place.element);
    return elements;
}

TypeTraits AgentSession::traitsOf(const QString& typeName) const {
    TypeTraits traits;
    for (const auto& toolkit : m_toolkits) {
        const TypeTraits each = toolkit->traitsOf(typeName);
        traits.areItems |= each.areItems;
        traits.showBelowHidden |= each.showBelowHidden;
    }
    return traits;
}

Wire::ObjectInfo AgentSession::info(const Element& element) {
    Wire::ObjectInfo info;
    if (element.isNull())
        return info;
    info.handle = handle(element);
    info.className = element.toolkit->typeName(element);
    info.objectName = element.toolkit->name(element);
    return info;
}

QString AgentSession::describe(const Element& element) const {
    if (element.isNull())
        return QStringLiteral("no object");
    QString label = element.toolkit->text(element);
    if (label.isEmpty())
        label = element.toolkit->name(element);
    if (label.isEmpty())
        label = element.toolkit->hint(element).value;
    constexpr int longest = 40;
    if (label.size() > longest)
        label = label.left(longest) + QStringLiteral("...");
    const QString type = element.toolkit->typeName(element);
    return label.isEmpty() ? type : QStringLiteral("%1 '%2'").arg(type, label.simplified());
}

}  // namespace Tamrix::Agent

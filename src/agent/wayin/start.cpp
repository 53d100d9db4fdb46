#include "agent/wayin/start.h"

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <QGuiApplication>
#include <QTimer>
#include <atomic>
#include <cstdio>

#include "agent/core/agentsession.h"
#include "agent/core/objecttoolkit.h"
#include "agent/core/propertyhandlers.h"
#include "agent/core/toolkitlibraries.h"
#include "agent/events/eventhandlers.h"
#include "agent/functions/acthandler.h"
#include "agent/input/inputhandlers.h"
#include "agent/pictures/picturehandlers.h"
#include "agent/readiness/objecthandlers.h"
#include "agent/recorder/recordhandlers.h"
#include "wire/framechannel.h"
#include "wire/protocol.h"

namespace Tamrix::Agent {

namespace {

AgentSession* s_session = nullptr;
/// The connection's socket, for the child after a fork.
std::atomic<int> s_descriptor{-1};

/// A forked child that runs on shares the socket with its parent. It gets another file in its
/// place, at whose end the child's session, should it run at all, goes silent.
void leaveConnectionInChild() {
    const int descriptor = s_descriptor.exchange(-1);
    if (descriptor < 0)
        return;
    const int null = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    if (null < 0 || ::dup3(null, descriptor, O_CLOEXEC) < 0)
        ::close(descriptor);
    if (null >= 0)
        ::close(null);
}

void stop() {
    s_descriptor = -1;
    delete s_session;
    s_session = nullptr;
}

void connectToRunner() {
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return;
    const Outcome<int> descriptor =
        Wire::connectLocalSocket(QString::fromLocal8Bit(qgetenv(Wire::connectVariable)));
    if (!descriptor) {
        std::fprintf(stderr, "tamrixagent: %s\n", qPrintable(descriptor.error().text));
        return;
    }
    s_descriptor = *descriptor;
    ::pthread_atfork(nullptr, nullptr, leaveConnectionInChild);
    s_session = new AgentSession(*descriptor, QString::fromLocal8Bit(qgetenv(Wire::tokenVariable)));
    s_session->addToolkit(std::make_unique<ObjectToolkit>());
    loadToolkitLibraries(s_session);
    registerObjectHandlers(s_session);
    registerPropertyHandlers(s_session);
    registerActHandler(s_session);
    registerInputHandlers(s_session);
    registerPictureHandlers(s_session);
    registerEventHandlers(s_session);
    registerRecordHandlers(s_session);
    // Ends before the application object does: its event loop watches the socket.
    qAddPostRoutine(stop);
}

}  // namespace

}  // namespace Tamrix::Agent

void tamrixAgentStart() {
    static std::atomic<bool> s_isStarted{false};
    if (qEnvironmentVariableIsEmpty(Tamrix::Wire::connectVariable) ||
        !QCoreApplication::instance() || s_isStarted.exchange(true))
        return;
    // The application object is not finished yet.
    QTimer::singleShot(0, QCoreApplication::instance(), [] { Tamrix::Agent::connectToRunner(); });
}

#pragma once

#include <functional>
#include <utility>

#include "interpreter/bridge/backgroundtask.h"
#include "platform/objectmodel/inspector.h"
#include "support/fakecalls.h"

namespace Tamrix::Test {

/// Applications that are not there: starting gives what a test has put here, and fails by default.
class FakeApplications : public virtual FakeCalls {
public:
    /// All of them.
    QList<SharedPtr<ApplicationContext>> contexts;
    /// Types that isTypeKnownInContext() knows, with the context's id.
    QList<std::pair<QString, int>> knownTypes;

    /// What starting, attaching and waiting for a launch give, and their error text.
    SharedPtr<ApplicationContext> started;
    QString startError = "not connected";
    SharedPtr<ApplicationContext> defaultContext;
    SharedPtr<ApplicationContext> currentContext;
    bool detaches = false;
    /// Why facts that need a running application can't be told; empty when they can.
    QString factError;
    /// Makes the task of a video, which owns the device; without it none can be made.
    std::function<QSharedPointer<BackgroundTask>(QIODevice*)> onVideoCapture;
    /// Null when the application's output is not kept.
    QString output;

    SharedPtr<ApplicationContext> startApplication(const QString& program, const QString& host,
                                                   int port, int timeout, QString* error) override {
        return start("start " + program, host, port, timeout, error);
    }
    SharedPtr<ApplicationContext> attachToApplication(const QString& name, const QString& host,
                                                      int port, int timeout,
                                                      QString* error) override {
        return start("attach " + name, host, port, timeout, error);
    }
    SharedPtr<ApplicationContext> startSpecialApplication(const QString& program,
                                                          const QStringList& arguments,
                                                          const QString& host, int port,
                                                          int timeout, QString* error) override {
        return start("special " + program + " (" + arguments.join(", ") + ")", host, port, timeout,
                     error);
    }
    SharedPtr<ApplicationContext> startSpecialApplication(const QString&,
                                                          const QMap<QString, QString>&,
                                                          const QString&, int, int,
                                                          QString* error) override {
        *error = "not connected";
        return {};
    }
    bool detachApplication(SharedPtr<ApplicationContext>) override { return detaches; }
    SharedPtr<ApplicationContext> waitForApplicationLaunch(int timeout, QString* error) override {
        return start("launch", "", -1, timeout, error);
    }
    SharedPtr<ApplicationContext> defaultApplicationContext() override { return defaultContext; }
    SharedPtr<ApplicationContext> applicationContext(const QString& name) override {
        if (name.isEmpty())
            return currentContext;
        for (const SharedPtr<ApplicationContext>& context : contexts) {
            if (context->name == name)
                return context;
        }
        return {};
    }
    void setCurrentApplicationContext(SharedPtr<ApplicationContext> context) override {
        currentContext = context;
    }
    QList<SharedPtr<ApplicationContext>> applicationContexts() override { return contexts; }
    qint64 usedMemory(SharedPtr<ApplicationContext>) override { return fact(1LL << 40); }
    qint64 totalTime(SharedPtr<ApplicationContext>) override { return fact(1LL << 41); }
    QString environmentVariable(SharedPtr<ApplicationContext>, const QString& name) override {
        return "value of " + name;
    }
    QString currentDirectory(SharedPtr<ApplicationContext>) override {
        return fact(QString("/cwd"));
    }
    QString host(SharedPtr<ApplicationContext>) override { return "host"; }
    int port(SharedPtr<ApplicationContext>) override { return 4711; }
    bool isRunning(SharedPtr<ApplicationContext> context) override { return context->valid; }
    bool isFrozen(SharedPtr<ApplicationContext>, int timeoutSeconds) override {
        return timeoutSeconds == 3;
    }
    int pid(SharedPtr<ApplicationContext>) override { return 99; }
    bool isValidContext(SharedPtr<ApplicationContext> context) override { return context->valid; }
    QString readStdout(SharedPtr<ApplicationContext>, bool* available) override {
        *available = !output.isNull();
        return output;
    }
    QString readStderr(SharedPtr<ApplicationContext>, bool* available) override {
        *available = !output.isNull();
        return output;
    }
    QString osName(SharedPtr<ApplicationContext>) override { return "os"; }
    FunctionCallResult<QSharedPointer<BackgroundTask>> startVideoCapture(
        SharedPtr<ApplicationContext> context, QIODevice* device) override {
        if (!onVideoCapture)
            return FunctionCallResult<QSharedPointer<BackgroundTask>>::error("no recorder");
        context->videoCapture = onVideoCapture(device);
        return context->videoCapture;
    }
    bool isTypeKnownInContext(const QString& typeName, int contextId) override {
        return knownTypes.contains({typeName, contextId});
    }

private:
    template <typename T>
    T fact(T value) const {
        if (!factError.isEmpty())
            Inspector::self()->setLastError(factError);
        return value;
    }
    SharedPtr<ApplicationContext> start(const QString& what, const QString& host, int port,
                                        int timeout, QString* error) {
        calls.append(
            QString("%1 host '%2' port %3 timeout %4").arg(what, host).arg(port).arg(timeout));
        *error = startError;
        return started;
    }
};

}  // namespace Tamrix::Test

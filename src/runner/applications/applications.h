#pragma once

#include <QDeadlineTimer>
#include <QList>
#include <QString>
#include <deque>
#include <functional>
#include <memory>
#include <vector>

#include "runner/applications/agentserver.h"
#include "runner/applications/application.h"
#include "runner/applications/applicationstart.h"
#include "runner/applications/privatedisplay.h"
#include "runner/applications/startedprograms.h"
#include "runner/processes/runwatch.h"

namespace Tamrix {

/// The applications of a run: starts them, accepts the connections of their processes, and ends
/// them. Script thread only.
///
/// A process of an application that announces itself becomes a context at once, whether somebody
/// waits for it or not.
///
/// What input does in one process is done before another one is asked for anything, started or
/// ended, as the next request to the same process has it: a script's actions happen in its order.
/// A process that does not come to rest holds the others up for five seconds, one that does nothing
/// for one.
class Applications {
public:
    /// How long an application may take to connect unless the script says otherwise, in
    /// milliseconds.
    static constexpr int defaultStartTimeout = 20000;

    Applications();
    /// Ends all.
    ~Applications();
    Applications(const Applications&) = delete;
    Applications& operator=(const Applications&) = delete;

    /// Sets where applications appear: "inherit" for the display of this process, "auto" for a
    /// display and a session bus of this run's own, ":N" for a display that is there.
    Outcome<> useDisplay(const QString& display);
    /// The display on which applications appear, for a person: ":0"; empty without one.
    QString display() const;

    /// What programs get that are started from now on, besides what their start says.
    void setCaseEnvironment(const ProgramEnvironment& environment) {
        m_caseEnvironment = environment;
    }

    // Waiting ones. They end early when the run is interrupted, as failures.
    /// Starts a program and waits until it, or a process that came of it, has connected. Nothing
    /// stays of a program that did not.
    Outcome<SharedPtr<Application>> start(const ApplicationStart& start, int timeout);
    /// Connects to a program that "tamrixrunner attachable" keeps under this name.
    Outcome<SharedPtr<Application>> attach(const QString& name, int timeout);
    /// The next process of an application that announced itself without being waited for by
    /// start(). It becomes the current one only when there is none.
    Outcome<SharedPtr<Application>> waitForLaunch(int timeout);

    /// Takes an application that is connected in whatever way. It does not become the current one.
    SharedPtr<Application> add(std::unique_ptr<Access> access, const QString& name);

    /// Those that are connected, in the order in which they came.
    QList<SharedPtr<Application>> live();
    /// Null when there is none.
    SharedPtr<Application> find(int id);
    SharedPtr<Application> find(const QString& name);
    /// The first that is connected.
    SharedPtr<Application> first();
    /// The target of operations; null when there is none.
    SharedPtr<Application> current() const { return m_current; }
    /// Also for the inspector.
    void setCurrent(SharedPtr<Application> application);
    /// The one whose object this is; the current one for null and for objects of none.
    SharedPtr<Application> owner(const SharedPtr<Object>& object);
    /// The application itself when it is one of these, null for null and others.
    SharedPtr<Application> checked(const SharedPtr<ApplicationContext>& context);

    /// Accepts connections and processes everything that is pending, without waiting.
    void work();
    /// work(), then waits until something comes, at most this long.
    void waitForNews(int milliseconds);
    /// Whether the run was interrupted since the script's last call from outside began, or waits
    /// are given up.
    bool isInterrupted() const;
    /// What is asked during waits whether they are to go on, besides interrupts; empty for nothing.
    void setGoOn(const std::function<bool()>& goOn) { m_goOn = goOn; }
    /// A call of the script begins: interrupts from before don't end its waits.
    void startCall();

    /// What marks programs that help the run and belong to no application; the run's watch, which
    /// is at work then, ends them.
    Outcome<QString> helperMark();
    /// A variable as applications get it.
    QString environmentVariable(const QString& name) const;

    StartedPrograms& programs() { return m_programs; }
    /// Ends all applications that were started: asks them to close, then terminates, then kills
    /// them. Drops the connections to all others. Returns names of those that could not be ended.
    QStringList endAll();

private:
    Outcome<> prepare();
    SharedPtr<Application> add(std::shared_ptr<AgentConnection> connection, const QString& name);
    SharedPtr<Application> add(std::unique_ptr<Access> access, const QString& name,
                               const std::shared_ptr<StartedProgram>& program);
    QString uniqueName(const QString& name);
    SharedPtr<Application> firstOf(const StartedProgram* program);
    Outcome<SharedPtr<Application>> waitForStart(const std::shared_ptr<StartedProgram>& program,
                                                 const QDeadlineTimer& deadline, int timeout);
    /// The same for a program without agent, whose window is waited for.
    Outcome<SharedPtr<Application>> waitForWindow(const std::shared_ptr<StartedProgram>& program,
                                                  const QDeadlineTimer& deadline, int timeout);
    /// `obstacle` is what keeps the agent out, empty when that is not why. `timeout` is -1 when the
    /// wait ended before.
    QString startFailure(StartedProgram& program, const QString& obstacle, int timeout);
    /// Asks what scripts need first. Fails when the application, though connected, does not answer
    /// in time.
    Outcome<> greet(Application& application, const QDeadlineTimer& deadline, int timeout);
    void dropLaunched(const SharedPtr<Application>& application);
    /// Drops the applications of a program that did not come to be used.
    void forgetAll(const StartedProgram* program);
    /// The application with this number is asked for something: the one before comes to rest.
    void turnTo(int id);
    /// False when no application took the request.
    bool askToClose();

    QString m_runId;
    // In this order: the watch clears up behind everything else, programs use the display.
    RunWatch m_watch;
    AgentServer m_server;
    PrivateDisplay m_privateDisplay;
    ProgramEnvironment m_displayEnvironment;
    ProgramEnvironment m_caseEnvironment;
    StartedPrograms m_programs;
    QList<SharedPtr<Application>> m_applications;
    std::deque<SharedPtr<Application>> m_launched;
    SharedPtr<Application> m_current;
    int m_lastId = 0;
    /// The application that was asked last.
    int m_lastAsked = 0;
    int m_lastProgram = 0;
    int m_interruptBeforeCall = 0;
    std::function<bool()> m_goOn;
    bool m_isWorking = false;
};

}  // namespace Tamrix

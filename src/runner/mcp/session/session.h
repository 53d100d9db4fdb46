#pragma once

#include <QRect>
#include <QString>
#include <QTemporaryDir>
#include <QVariant>
#include <functional>
#include <memory>

#include "base/outcome.h"
#include "runner/applications/applications.h"
#include "runner/mcp/screen/view.h"
#include "runner/mcp/session/recording.h"

namespace Tamrix::Mcp {

/// An object that a client means.
struct Meant {
    SharedPtr<Application> application;
    /// Null for a name: then the application looks for it.
    SharedPtr<Object> object;
    /// For scripts: a name that finds it.
    QString name;
    /// For people.
    QString text;
};

/// Something that is done to an object.
struct Act {
    /// The application's function, and its arguments behind the object.
    QString function;
    QVariantList arguments;
    /// How a script does it; called when it is done.
    std::function<ScriptAction()> script;
};

/// The programs that a client has started and sees: what is visible, what it has done, and the
/// script of that. Script thread only.
class Session {
public:
    /// How long an object may take to be ready for what is done with it, and an answer, in ms.
    static constexpr int readyTimeout = 5000;

    /// Programs appear on `display`, as Applications::useDisplay() takes it. `goOn` is called
    /// during waits; false gives them up.
    Session(QString display, std::function<bool()> goOn);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    const QString& display() const { return m_display; }

    /// Ends what runs, and starts a program, given with its arguments as a shell takes them.
    Outcome<> start(const QString& commandLine);
    /// Waits, with everything at work. False when it was given up.
    bool wait(int milliseconds);
    bool isGivenUp() { return !m_goOn(); }

    /// Looks at all applications. What is seen is what the client knows from then on. Fails when
    /// there is none that answers.
    Outcome<const View*> look();
    /// Looks until nothing changes any more, but not for long.
    Outcome<const View*> lookAtRest();
    /// The text about what changed since the client was told last, which it is by that.
    Outcome<QString> changes();

    /// The object that a client means by a ref, "e7", or a name, "{type='QPushButton'}". The
    /// failure for a ref whose object is gone says what it was and what is nearest.
    Outcome<Meant> meant(const QString& target);
    /// By the ref of an object that is visible. Fails as meant().
    Outcome<const ViewObject*> visible(const QString& ref);
    /// What the last look has seen.
    const View& view() const { return m_view; }
    /// The part of an object that is seen, on the screen. Empty for what is scrolled out of sight.
    Outcome<QRect> seenPart(const Meant& meant);
    /// What has the keyboard's focus, else the window that was shown last.
    Outcome<Meant> focused();
    /// The object itself; null for a name that finds none.
    static SharedPtr<Object> objectOf(const Meant& meant);

    /// Does it, and tells the line of a script that does the same and what changed.
    Outcome<QString> perform(const Meant& meant, const Act& act);
    /// What the client did that isn't an act, with its line; of a long one the beginning.
    Outcome<QString> noteAction(const ScriptAction& action);

    /// A new folder for a run of test cases, which goes with this.
    Outcome<QString> newRunFolder();

    Recording& recording() { return m_recording; }
    Applications& applications() { return m_applications; }
    /// The journal of the run of test cases that was made last; empty without one.
    QString journal;

private:
    Outcome<SharedPtr<Application>> applicationOf(int id);
    Outcome<Meant> meantByRef(int ref);
    Outcome<Meant> meantByName(const QString& name);
    /// The best name of the object that has no password in it, when its own has.
    QString nameWithoutPassword(const Meant& meant) const;
    Failure goneFailure(const ViewObject& object);
    /// Adds how the program ended to a failure that this explains.
    Failure explained(const Failure& failure);
    Outcome<View> currentView();

    QString m_display;
    std::function<bool()> m_goOn;
    Applications m_applications;
    bool m_hasDisplay = false;
    Refs m_refs;
    /// What was seen last.
    View m_view;
    /// What the client was told of.
    View m_told;
    Recording m_recording;
    std::unique_ptr<QTemporaryDir> m_runFolder;
};

/// The number in a ref, "e7"; 0 for what is none.
int refNumber(const QString& ref);

/// The index of what comes nearest to an object that is gone; -1 when nothing does.
int nearestTo(const View& view, const ViewObject& gone);

}  // namespace Tamrix::Mcp

#pragma once

#include <QPoint>
#include <QRect>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "base/export.h"
#include "base/outcome.h"
#include "platform/objectmodel/objectmodel.h"
#include "platform/objectmodel/objectname.h"
#include "wire/messages.h"
#include "wire/observations.h"

namespace Tamrix {

/// What an application tells of itself when it is connected.
struct ApplicationFacts {
    qint64 pid = -1;
    /// Path of the program, and what it was given.
    QString program;
    QStringList arguments;
    /// What its windows are made with: "Qt 5.15.8".
    QString toolkit;
    /// Where they are shown: "xcb", "offscreen"...
    QString platform;
    /// "Debian GNU/Linux 12 (bookworm)"
    QString osName;
};

/// What something is done with: an object, or without one what a name finds, or an item in it.
struct Target {
    SharedPtr<Object> object = {};
    ObjectName name = {};
    std::optional<Wire::ItemAddress> item = std::nullopt;
    /// What it has to be before something is done.
    Wire::Wanted wanted = Wire::Wanted::Existence;
    /// How long is waited for that, in ms; 0 for one look.
    int timeout = 0;
    /// Also names what matched nearly, when the name finds nothing.
    bool wantNearMisses = false;

    static Target ofObject(SharedPtr<Object> object,
                           Wire::Wanted wanted = Wire::Wanted::Existence) {
        return Target{std::move(object), {}, std::nullopt, wanted, 0, false};
    }
    static Target ofName(const ObjectName& name, Wire::Wanted wanted = Wire::Wanted::Existence) {
        return Target{{}, name, std::nullopt, wanted, 0, false};
    }
    bool isNothing() const { return !object && !name.isValid(); }
};

/// What became of a target.
struct TargetAnswer {
    /// Null when nothing matches.
    SharedPtr<Object> object = {};
    /// Whether it is as wanted; of an act, whether it was tried.
    bool isReady = false;
    /// What is missing for that: "it is not visible".
    QString obstacle = {};
    /// What the object is as long as it isn't what was wanted.
    QString lack = QStringLiteral("not ready");
    /// Why nothing matches, with the nearest misses when they were asked for.
    QString missText = {};
    /// Of an act that was tried: what the function gave, or why it failed.
    Outcome<SharedPtr<Object>> result = {};
};

/// The objects that a name matches.
struct NameMatches {
    struct Match {
        SharedPtr<Object> object;
        /// On the screen.
        QRect bounds;
        bool isVisible = false;
    };
    /// All of them; only the first hundred are listed.
    int count = 0;
    std::vector<Match> matches;
};

/// A name that finds an object, as the look-up itself has found out.
struct CheckedName {
    QString name;
    /// How many objects it matches, whatever occurrence it says.
    int count = 0;
};

/// All that a run asks of one connected application, whatever stands between them. What a way into
/// applications can't do, it refuses with a reason: that is what the operations of this class do by
/// themselves, so an implementation has those that it can. Script thread only; nothing throws. An
/// `answerTimeout` of -1 is the usual time for an answer.
///
/// The agent's connection is one implementation (RemoteModel); the tests have one in memory. How
/// others fit, or would:
///
/// - A display without an agent (DisplayModel) has its windows as objects, and acts by mouse, keys
///   and pictures; names of anything else it refuses.
/// - Accessibility (AT-SPI) has trees, properties and actions, each asked for over D-Bus: it
///   matches names on this side of the connection, keeps what it learnt for the time of one look,
///   and waits in act() by looking again, as its objects can't do it themselves. What it can't ask,
///   as who covers whom, it does not name as an obstacle.
/// - A remote machine is this interface over a connection: the agent's messages, forwarded, with
///   facts() of the process there. Its process can't be watched, so `isOpen()` alone tells its end.
class TAMRIX_EXPORT Access : public ObjectModel {
public:
    // The connection.
    virtual ApplicationFacts facts() const = 0;
    virtual bool isOpen() const = 0;
    /// Works off what has come, without waiting. Returns isOpen() after that.
    virtual bool takeNews() = 0;
    /// To be polled for reading while it is open, then takeNews(); -1 for none.
    virtual int descriptor() const { return -1; }
    /// Closes for good. Requests fail from now on with this reason.
    virtual void close(const QString& reason) = 0;
    /// Why it is closed.
    virtual QString endReason() const = 0;
    /// Whether the object came through here.
    virtual bool owns(const SharedPtr<Object>& object) const = 0;
    /// Gets what scripts need first, within this time.
    virtual Outcome<> prepare(int timeout);
    /// Whether the application reacts within `timeout` ms.
    virtual Outcome<> ping(int timeout);

    /// Waits until the application has done all that input made it do, at most this long, and not
    /// longer than a second for one that does nothing. At once where nothing is due.
    virtual Outcome<> settle(int timeout);

    // What the run tells, for requests to end in time; an access that doesn't wait needs none.
    /// Called during waits, some twenty times a second; false gives the wait up. Makes no request
    /// here.
    virtual void setIdleHook(const std::function<bool()>& hook);
    /// Called before each request, except for those of ping() and settle().
    virtual void setTurnHook(const std::function<void()>& hook);
    /// What tells how the application ended, better than the access can; an empty text leaves it to
    /// the access.
    virtual void setEndText(const std::function<QString()>& endText);
    /// Tells whether the process has done nothing since the last call.
    virtual void setStallTest(const std::function<bool()>& isStalled);
    /// Readable when the process ends; not owned; -1 for none.
    virtual void setProcessDescriptor(int descriptor);
    /// How long calls with an object wait for it to be ready.
    virtual void setReadyTimeout(int milliseconds);
    /// From now on no request waits longer than this.
    virtual void hurry(int milliseconds);

    // Looks, once, without waiting. Nothing that matches is no failure.
    virtual Outcome<TargetAnswer> lookUp(const Target& target, int answerTimeout) = 0;
    /// Ready means that the target has the properties; the obstacle is what it has otherwise.
    virtual Outcome<TargetAnswer> expect(const Target& target, const ObjectName& properties,
                                         int answerTimeout);
    /// The object with this RemoteObjectBase::remoteId().
    virtual Outcome<SharedPtr<Object>> objectById(int remoteId);

    // Acts. The target is waited for as long as it says.
    /// Calls a global function with the target as its first argument. `timeout` bounds all that the
    /// function waits for, the target included. It fails when the application can't be asked; that
    /// the target was missed, and what the function gave, the answer tells.
    virtual Outcome<TargetAnswer> act(const QString& function, const Target& target,
                                      const ObjectList& arguments, int timeout) = 0;
    /// `target` stands for that of the event; nothing means the screen.
    virtual Outcome<> mouseEvent(const Target& target, const Wire::MouseEvent& event);
    virtual Outcome<> keyEvent(const QString& key, bool press);
    /// -1 milliseconds: until stopHighlight().
    virtual Outcome<> highlight(const Target& target, int milliseconds);
    virtual Outcome<> stopHighlight();
    /// Asks the application's windows to close.
    virtual Outcome<> quit();

    // What there is.
    /// Of nothing: of all objects. With images: a picture of the target, or of each window, in
    /// which its parts are seen; none of the parts themselves.
    virtual Outcome<QByteArray> snapshotOf(const Target& target, bool withImages);
    Outcome<QByteArray> snapshot(SharedPtr<Object> object) override;
    Outcome<QByteArray> snapshotWithPicture(SharedPtr<Object> object) override;
    /// All objects with their names.
    virtual Outcome<Wire::ObjectListing> listing();
    /// What is visible now. Its handles are what objectById() takes.
    virtual Outcome<Wire::ObjectOutline> outline();
    /// A screen rectangle.
    virtual Outcome<SharedPtr<Object>> globalBounds(SharedPtr<Object> object);
    virtual Outcome<QString> environmentVariable(const QString& name);
    /// The events that came: callback and object. They are given once.
    virtual std::vector<std::pair<QString, SharedPtr<Object>>> takeEvents();
    /// Lets what a person does be observed from now on, or no more.
    virtual Outcome<> record(const Wire::Record& record);
    /// The observations that came. They are given once.
    virtual std::vector<Wire::Observation> takeObservations();

    // Questions of those who make names and mend them.
    virtual Outcome<NameMatches> matchesOf(const ObjectName& name);
    /// What a click at this point of the screen would get; null for nothing.
    virtual Outcome<SharedPtr<Object>> objectAt(const QPoint& point);
    /// Several names that find the object, the best first: those that match nothing else, in the
    /// order in which they say what lasts, then the others.
    virtual Outcome<QList<CheckedName>> namesOf(const SharedPtr<Object>& object);
    /// What nearly has the name, with the handle of each object; none when something has it.
    virtual Outcome<QList<NearMiss>> nearMissesOf(const ObjectName& name);

protected:
    /// What an operation fails with that this way has not.
    static tl::unexpected<Failure> cannot(const char* what);
};

/// Says in a failure what became of a target that nothing was done with.
TAMRIX_EXPORT tl::unexpected<Failure> missFailure(const TargetAnswer& answer);

}  // namespace Tamrix

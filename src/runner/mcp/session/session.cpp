#include "runner/mcp/session/session.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QRegularExpression>
#include <algorithm>
#include <optional>
#include <utility>

#include "platform/objectmodel/valueobject.h"
#include "runner/mcp/screen/changes.h"
#include "runner/mcp/screen/viewtext.h"
#include "runner/processes/shellwords.h"

namespace Tamrix::Mcp {

namespace {

/// Between two looks of which the second tells whether something goes on.
constexpr int lookInterval = 60;
/// How long a client waits at most for that to end.
constexpr int longestUnrest = 1000;
/// How long a client waits at most for a text to be typed.
constexpr int longestTyping = 60000;
/// Of a script, as a client is told of it; the script has all of it.
constexpr int longestLine = 1000;

/// The command line for scripts, which run in another folder.
Outcome<QString> lastingCommandLine(const QString& commandLine) {
    Outcome<QStringList> words = splitShellWords(commandLine);
    if (!words)
        return fail(words.error());
    if (!words->isEmpty() && words->first().contains(QLatin1Char('/')))
        words->first() = QDir().absoluteFilePath(words->first());
    return quotedShellWords(*words);
}

/// How long a program may take to have all that an act types, in ms, beyond what it has anyway.
int typingTime(const Act& act) {
    constexpr qint64 eachCharacter = 20;
    qint64 characters = 0;
    for (const QVariant& argument : act.arguments)
        characters += argument.toString().size();
    return static_cast<int>(std::min<qint64>(characters * eachCharacter, longestTyping));
}

bool isSame(const View& left, const View& right) {
    return left.size() == right.size() && changesText(left, right).isEmpty();
}

}  // namespace

int refNumber(const QString& ref) {
    static const QRegularExpression s_form(QStringLiteral("\\A[eE]([1-9][0-9]{0,8})\\z"));
    return s_form.match(ref.trimmed()).captured(1).toInt();
}

int nearestTo(const View& view, const ViewObject& gone) {
    int best = -1;
    int bestScore = 3;
    for (size_t index = 0; index < view.size(); ++index) {
        const ViewObject& object = view[index];
        const auto score = [](bool isEqual, const QString& text, int points) {
            return isEqual && !text.isEmpty() ? points : 0;
        };
        const Wire::OutlinedObject& facts = object.facts;
        const int sum = score(object.type == gone.type, gone.type, 2) +
                        score(facts.name == gone.facts.name, facts.name, 3) +
                        score(facts.text == gone.facts.text, facts.text, 3) +
                        score(facts.label == gone.facts.label, facts.label, 3);
        if (sum > bestScore) {
            best = static_cast<int>(index);
            bestScore = sum;
        }
    }
    return best;
}

Session::Session(QString display, std::function<bool()> goOn)
    : m_display(std::move(display)), m_goOn(std::move(goOn)) {
    m_applications.setGoOn(m_goOn);
}

Session::~Session() {
    // A client that has gone waits for nothing.
    m_goOn = [] { return true; };
    m_applications.setGoOn({});
    m_applications.endAll();
}

Outcome<> Session::start(const QString& commandLine) {
    if (!m_hasDisplay) {
        if (const Outcome<> used = m_applications.useDisplay(m_display); !used)
            return used;
        m_hasDisplay = true;
    }
    const Outcome<QString> lasting = lastingCommandLine(commandLine);
    if (!lasting)
        return fail(lasting.error());
    const Outcome<ApplicationStart> start = resolveApplication(*lasting, {});
    if (!start)
        return fail(start.error());
    m_applications.endAll();
    m_view.clear();
    m_told.clear();
    m_recording.restart();
    m_applications.startCall();
    const Outcome<SharedPtr<Application>> application = m_applications.start(*start, -1);
    if (!application)
        return fail(application.error());
    const Outcome<QString> noted = noteAction(
        FunctionAction{QStringLiteral("startApplication"), {}, {ActionValue(*lasting)}, {}});
    return noted ? Outcome<>() : fail(noted.error());
}

Outcome<QString> Session::newRunFolder() {
    m_runFolder = std::make_unique<QTemporaryDir>();
    if (!m_runFolder->isValid())
        return fail(FailureKind::Failed, QStringLiteral("no folder for the run can be made: %1")
                                             .arg(m_runFolder->errorString()));
    return m_runFolder->path();
}

bool Session::wait(int milliseconds) {
    m_applications.waitForNews(milliseconds);
    return m_goOn() && !m_applications.isInterrupted();
}

// Looking

Failure Session::explained(const Failure& failure) {
    const SharedPtr<Application> current = m_applications.current();
    const QString end = current ? current->endText() : QString();
    if (!end.isEmpty())
        return {FailureKind::Ended, end};
    return failure;
}

Outcome<View> Session::currentView() {
    const SharedPtr<Application> current = m_applications.current();
    if (!current)
        return fail(FailureKind::Refused, QStringLiteral("no program is started: start one"));
    View view;
    std::optional<Failure> failure;
    bool isSeen = false;
    const QList<SharedPtr<Application>> live = m_applications.live();
    for (const SharedPtr<Application>& application : live) {
        application->access().hurry(readyTimeout);
        const Outcome<Wire::ObjectOutline> outline = application->access().outline();
        if (outline) {
            isSeen = true;
            appendView(application->id, *outline, &m_refs, &view);
        } else if (application == current || !failure) {
            failure = outline.error();
        }
    }
    if (isSeen)
        return view;
    return fail(explained(
        failure ? *failure : Failure{FailureKind::Ended, QStringLiteral("the program has ended")}));
}

Outcome<const View*> Session::look() {
    Outcome<View> view = currentView();
    if (!view)
        return fail(view.error());
    m_view = std::move(*view);
    m_refs.note(m_view);
    m_told = m_view;
    return &m_view;
}

Outcome<const View*> Session::lookAtRest() {
    const QDeadlineTimer deadline(longestUnrest);
    Outcome<View> view = currentView();
    while (view && !deadline.hasExpired() && wait(lookInterval)) {
        Outcome<View> next = currentView();
        const bool isAtRest = next && isSame(*view, *next);
        view = std::move(next);
        if (isAtRest)
            break;
    }
    if (!view)
        return fail(view.error());
    m_view = std::move(*view);
    m_refs.note(m_view);
    return &m_view;
}

Outcome<QString> Session::changes() {
    const Outcome<const View*> view = lookAtRest();
    if (!view)
        return fail(view.error());
    QString text = changesText(m_told, m_view);
    m_told = m_view;
    return text.isEmpty() ? QStringLiteral("nothing visible changed\n") : text;
}

// What is meant

Outcome<SharedPtr<Application>> Session::applicationOf(int id) {
    if (const SharedPtr<Application> application = m_applications.find(id)) {
        const QString end = application->endText();
        if (end.isEmpty())
            return application;
        return fail(FailureKind::Ended, end);
    }
    return fail(
        explained({FailureKind::Ended, QStringLiteral("the program of this object has ended")}));
}

Failure Session::goneFailure(const ViewObject& object) {
    // What takes its place may have come just now.
    if (Outcome<View> view = currentView()) {
        m_view = std::move(*view);
        m_refs.note(m_view);
    }
    QString text =
        QStringLiteral("e%1 is gone; it was %2")
            .arg(QString::number(object.ref), objectLine(object).section(QLatin1Char(' '), 1));
    const int nearest = nearestTo(m_view, object);
    text += nearest < 0
                ? QStringLiteral(", and nothing is like it: see snapshot")
                : QStringLiteral(". Nearest: ") + objectLine(m_view[static_cast<size_t>(nearest)]);
    return {FailureKind::Gone, text};
}

Outcome<Meant> Session::meantByRef(int ref) {
    const ViewObject* const known = m_refs.known(ref);
    if (!known)
        return fail(FailureKind::BadArgument,
                    QStringLiteral("there is no e%1: snapshot tells what there is").arg(ref));
    // Copied: a further look renews what is known.
    const ViewObject object = *known;
    const Outcome<SharedPtr<Application>> application = applicationOf(object.key.application);
    if (!application) {
        // Where another program has taken its place, the object is gone like any.
        const bool hasOther =
            !m_applications.find(object.key.application) && !m_applications.live().isEmpty();
        return fail(hasOther ? goneFailure(object) : application.error());
    }
    Access& access = (*application)->access();
    const Outcome<SharedPtr<Object>> found = access.objectById(static_cast<int>(object.key.handle));
    if (!found)
        return fail(found.error().kind == FailureKind::Gone ? goneFailure(object)
                                                            : explained(found.error()));
    return Meant{*application, *found, (*found)->realName(), objectLine(object)};
}

Outcome<Meant> Session::meantByName(const QString& name) {
    QMap<QString, PropertyValue> properties;
    QString error;
    if (!parseNameByProperties(name, &properties, &error))
        return fail(FailureKind::BadArgument,
                    QStringLiteral("'%1' is neither a ref like e7 nor a name like "
                                   "{type='QPushButton' text='Save'}: %2")
                        .arg(name, error));
    const SharedPtr<Application> application = m_applications.current();
    if (!application)
        return fail(FailureKind::Refused, QStringLiteral("no program is started: start one"));
    const Outcome<SharedPtr<Application>> live = applicationOf(application->id);
    if (!live)
        return fail(live.error());
    return Meant{application, {}, name, name};
}

SharedPtr<Object> Session::objectOf(const Meant& meant) {
    if (meant.object)
        return meant.object;
    return meant.application->access().findObject(ObjectName(meant.name)).value_or(nullptr);
}

QString Session::nameWithoutPassword(const Meant& meant) const {
    if (!m_recording.holdsPassword(meant.name))
        return meant.name;
    const SharedPtr<Object> object = objectOf(meant);
    const QList<CheckedName> names =
        object ? meant.application->access().namesOf(object).value_or(QList<CheckedName>())
               : QList<CheckedName>();
    const auto found = std::find_if(names.begin(), names.end(), [&](const CheckedName& each) {
        return !m_recording.holdsPassword(each.name);
    });
    return found == names.end() ? QString() : found->name;
}

Outcome<Meant> Session::meant(const QString& target) {
    const int ref = refNumber(target);
    Outcome<Meant> meant = ref > 0 ? meantByRef(ref) : meantByName(target);
    if (!meant)
        return meant;
    meant->name = nameWithoutPassword(*meant);
    if (meant->name.isEmpty())
        return fail(FailureKind::Refused,
                    QStringLiteral("its name would bring a password into the script: name it "
                                   "otherwise, or use a ref"));
    return meant;
}

Outcome<const ViewObject*> Session::visible(const QString& ref) {
    const int number = refNumber(ref);
    if (number == 0)
        return fail(FailureKind::BadArgument, QStringLiteral("'%1' is no ref like e7").arg(ref));
    const int index = indexOf(m_view, number);
    if (index >= 0)
        return &m_view[static_cast<size_t>(index)];
    // Either it is gone, or only out of sight.
    const Outcome<Meant> meant = meantByRef(number);
    if (!meant)
        return fail(meant.error());
    return fail(FailureKind::NotFound, QStringLiteral("%1 is not visible now").arg(meant->text));
}

Outcome<QRect> Session::seenPart(const Meant& meant) {
    Access& access = meant.application->access();
    const Outcome<SharedPtr<Object>> object =
        meant.object ? meant.object : access.findObject(ObjectName(meant.name));
    if (!object)
        return fail(object.error());
    const Outcome<View> view = currentView();
    if (!view)
        return fail(view.error());
    if (const auto* const remote = dynamic_cast<const RemoteObjectBase*>(object->get())) {
        const ObjectKey key{meant.application->id, static_cast<quint64>(remote->remoteId())};
        for (const ViewObject& each : *view) {
            if (each.key == key)
                return each.facts.geometry;
        }
    }
    // What only holds others is no part of the view.
    const Outcome<SharedPtr<Object>> bounds = access.globalBounds(*object);
    if (!bounds)
        return fail(bounds.error());
    return unwrapRemoteScreenRectangleAsQRect(*bounds);
}

Outcome<Meant> Session::focused() {
    const Outcome<View> view = currentView();
    if (!view)
        return fail(view.error());
    int window = -1;
    for (const ViewObject& object : *view) {
        if (object.is(Wire::OutlinedObject::Focused)) {
            m_refs.note(*view);
            return meantByRef(object.ref);
        }
        if (object.is(Wire::OutlinedObject::Window))
            window = object.ref;
    }
    if (window < 0)
        return fail(FailureKind::NotFound, QStringLiteral("no window is visible"));
    m_refs.note(*view);
    return meantByRef(window);
}

// Acting

Outcome<QString> Session::noteAction(const ScriptAction& action) {
    Outcome<QString> line = m_recording.add(action);
    if (line && line->size() > longestLine)
        line = line->left(longestLine) + QStringLiteral("... (%1 characters)").arg(line->size());
    return line;
}

Outcome<QString> Session::perform(const Meant& meant, const Act& act) {
    // 1. The act itself; the application waits until the object is ready for it.
    Target target = meant.object ? Target::ofObject(meant.object, Wire::Wanted::Reach)
                                 : Target::ofName(ObjectName(meant.name), Wire::Wanted::Reach);
    target.timeout = readyTimeout;
    target.wantNearMisses = true;
    ObjectList arguments;
    for (const QVariant& argument : act.arguments)
        arguments.push_back(SharedPtr<Object>(new ValueObject(argument)));
    Access& access = meant.application->access();
    access.hurry(readyTimeout);
    const Outcome<TargetAnswer> answer = access.act(act.function, target, arguments, readyTimeout);
    if (!answer)
        return fail(explained(answer.error()));
    if (!answer->isReady)
        return missFailure(*answer);
    if (!answer->result)
        return fail(explained(answer->result.error()));
    // 2. Its line.
    const Outcome<QString> line = noteAction(act.script());
    if (!line)
        return fail(line.error());
    // 3. What came of it. The end of the program may be what was wanted.
    Outcome<QString> changed = changes();
    const QDeadlineTimer typing(typingTime(act));
    while (!changed && changed.error().kind == FailureKind::TimedOut && !typing.hasExpired() &&
           !isGivenUp())
        changed = changes();
    if (changed)
        return *line + QLatin1Char('\n') + *changed;
    if (changed.error().kind == FailureKind::Ended)
        return *line + QLatin1Char('\n') + changed.error().text + QLatin1Char('\n');
    return fail(changed.error().kind,
                QStringLiteral("%1\nwas done, but what came of it can't be seen: %2")
                    .arg(*line, changed.error().text));
}

}  // namespace Tamrix::Mcp

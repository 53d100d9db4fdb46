#include "runner/recording/recording.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <algorithm>

#include "runner/applications/applications.h"
#include "runner/processes/interrupt.h"
#include "runner/processes/shellwords.h"
#include "runner/processes/terminal.h"
#include "runner/recording/processesmerger.h"
#include "runner/recording/recordednames.h"
#include "runner/recording/recordedscript.h"
#include "wire/keynames.h"

namespace Tamrix {

namespace {

/// How often is looked whether something held can be written, in ms.
constexpr int idleInterval = 50;

/// The keys as the agent compares them.
Outcome<QString> normalizedKeys(const QString& text) {
    QString error;
    const Wire::KeyCombination keys = Wire::parseKeys(text, &error);
    if (keys.isEmpty())
        return fail(FailureKind::BadArgument, error);
    Qt::KeyboardModifiers modifiers;
    for (const Wire::Key& key : keys)
        modifiers |= Wire::modifierOfKey(key.code);
    return Wire::keysText(keys.last().code, modifiers);
}

/// The command line as scripts start it: a program given by a relative path is found from
/// elsewhere, too.
QString commandLineOf(const QStringList& program) {
    QStringList words = program;
    if (words.first().contains(u'/'))
        words.first() = QFileInfo(words.first()).absoluteFilePath();
    return quotedShellWords(words);
}

/// A recording that goes on.
class Recording {
public:
    Recording(RecordedScript& script, RecordedNames& names, const QString& verifyKeys)
        : m_script(script),
          m_merger([this](const ScriptAction& action) { m_script.add(action); },
                   [&names](const Wire::Query& query) { return names.nameOf(query); }),
          m_verifyKeys(verifyKeys) {
        m_clock.start();
    }

    /// Records all processes of the program, those that it starts later as well.
    Outcome<> follow(Applications& applications) {
        for (const SharedPtr<Application>& application : applications.live()) {
            if (find(application))
                continue;
            const Outcome<> recorded =
                application->access().record(Wire::Record{true, m_verifyKeys, m_isVerifying});
            // It may have ended at once.
            if (!recorded && application->isRunning())
                return recorded;
            m_processes.append({application, m_merger.addProcess(application->name)});
            if (m_processes.size() > 1)
                tell(QStringLiteral("Recording '%1', too, which the program has started")
                         .arg(application->name));
        }
        return {};
    }

    void work() {
        for (const Process& process : qAsConst(m_processes)) {
            for (const Wire::Observation& observation :
                 process.application->access().takeObservations()) {
                if (const auto* const mode = std::get_if<Wire::ObservedMode>(&observation))
                    takeMode(*mode, process);
                m_merger.add(process.number, observation, m_clock.elapsed());
            }
        }
        m_merger.idle(m_clock.elapsed());
    }

    void finish() { m_merger.finish(); }

private:
    struct Process {
        SharedPtr<Application> application;
        int number;
    };

    bool find(const SharedPtr<Application>& application) const {
        return std::any_of(m_processes.cbegin(), m_processes.cend(), [&](const Process& each) {
            return each.application->id == application->id;
        });
    }

    void takeMode(const Wire::ObservedMode& mode, const Process& where) {
        m_isVerifying = mode.isVerifying;
        tell(mode.isVerifying ? QStringLiteral("Clicks verify what they hit, until %1 is pressed")
                                    .arg(m_verifyKeys)
                              : QStringLiteral("Clicks act again"));
        // One that has ended meanwhile has no clicks.
        for (const Process& other : qAsConst(m_processes)) {
            if (other.number != where.number && other.application->valid)
                static_cast<void>(other.application->access().record(
                    Wire::Record{true, m_verifyKeys, m_isVerifying}));
        }
    }

    RecordedScript& m_script;
    ProcessesMerger m_merger;
    QString m_verifyKeys;
    bool m_isVerifying = false;
    QElapsedTimer m_clock;
    QList<Process> m_processes;
};

Outcome<> recordProgram(Applications& applications, const RecordingSettings& settings,
                        const QString& verifyKeys, const QString& path, RecordedScript& script,
                        RecordedNames& names) {
    if (const Outcome<> used = applications.useDisplay(settings.display); !used)
        return used;
    const QString commandLine = commandLineOf(settings.program);
    Outcome<ApplicationStart> start = resolveApplication(commandLine, {});
    if (!start)
        return fail(start.error());
    start->launcher = settings.launcher;
    const Outcome<SharedPtr<Application>> started = applications.start(*start, -1);
    if (!started)
        return fail(started.error());
    Recording recording(script, names, verifyKeys);
    if (const Outcome<> followed = recording.follow(applications); !followed)
        return followed;
    if (const Outcome<> created = path.isEmpty() ? Outcome<>() : script.create(path); !created)
        return created;
    script.begin();
    script.add(FunctionAction{QStringLiteral("startApplication"), {}, {commandLine}});
    tell(QStringLiteral("Recording; %1 switches to verifying and back, Ctrl-C ends")
             .arg(verifyKeys));
    Outcome<> followed;
    while (followed && Interrupt::signalNumber() == 0 && !applications.live().isEmpty()) {
        applications.waitForNews(idleInterval);
        followed = recording.follow(applications);
        recording.work();
    }
    recording.work();
    recording.finish();
    script.end();
    // A program that a person has closed says nothing; one that was lost does.
    const QString end = (*started)->endText();
    if (!end.isEmpty() && (*started)->program()->process().exitCode() > 0)
        tell(end);
    if (!followed)
        return followed;
    return script.result() ? names.result() : script.result();
}

}  // namespace

Outcome<> record(const RecordingSettings& settings,
                 const std::function<void(const QString& text)>& tell) {
    const Outcome<QString> verifyKeys = normalizedKeys(settings.verifyKeys);
    if (!verifyKeys)
        return fail(verifyKeys.error());
    RecordedNames names;
    const QString suffix = scriptSuffix(settings.language);
    QString path;
    if (!settings.suite.isEmpty()) {
        path = QStringLiteral("%1/%2/test.%3").arg(settings.suite, settings.caseName, suffix);
        // Before anything starts; the file is made when there is something to write.
        if (const Outcome<> writable = RecordedScript::check(path); !writable)
            return writable;
        if (const Outcome<> used = names.useMapOf(settings.suite); !used)
            return used;
    }
    Outcome<std::unique_ptr<EventRecorder>> writer =
        scriptWriter(settings.language, names.moduleFor(suffix));
    if (!writer)
        return fail(writer.error());
    RecordedScript script(std::move(*writer), tell);
    Applications applications;
    const Outcome<> recorded =
        recordProgram(applications, settings, *verifyKeys, path, script, names);
    applications.endAll();
    return recorded;
}

}  // namespace Tamrix

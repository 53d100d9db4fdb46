#include "runner/services/remoteapplication.h"

#include <algorithm>

#include "base/environment.h"
#include "base/nativebytes.h"
#include "platform/objectmodel/inspector.h"
#include "runner/processes/shellwords.h"
#include "runner/relay/remoteprogram.h"
#include "runner/remote/sshsystem.h"

namespace Tamrix {

namespace {

const ConfiguredApplication* findConfigured(const ApplicationPlaces& places, const QString& name) {
    const auto found =
        std::find_if(places.configured.cbegin(), places.configured.cend(),
                     [&name](const ConfiguredApplication& each) { return each.name == name; });
    return found == places.configured.cend() ? nullptr : &*found;
}

}  // namespace

Outcome<ApplicationStart> remoteApplication(const QString& text, const SshTarget& target,
                                            const ApplicationPlaces& places) {
    Outcome<QStringList> words =
        findConfigured(places, text) ? QStringList{text} : splitShellWords(text);
    if (!words)
        return fail(words.error());
    if (words->isEmpty())
        return fail(FailureKind::BadArgument, QStringLiteral("no program is named"));
    ApplicationStart start;
    Relay::RemoteProgram program{target, {}, {}};
    const QString first = words->takeFirst();
    if (const ConfiguredApplication* const known = findConfigured(places, first)) {
        start.name = known->name;
        program.start.words = QStringList{known->path} + known->arguments + *words;
        program.start.environment = known->environment;
        program.start.hook = known->launcher->name();
        if (known->workingDirectory.startsWith(QLatin1Char('/')))
            program.start.workingDirectory = known->workingDirectory;
    } else {
        start.name = first.section(QLatin1Char('/'), -1);
        program.start.words = QStringList{first} + *words;
        program.start.hook = Launcher::standard().name();
    }
    start.host = target.host;
    start.port = target.port;
    start.program.program = Environment::getVariable(QLatin1String(prefixVariable)) +
                            QLatin1String("/lib/exec/tamrixremote");
    // For people who look at the processes; what counts is in the environment.
    start.program.arguments = QStringList{target.host, start.name};
    start.program.environment = {
        {QLatin1String(Relay::startVariable), QString::fromLatin1(Relay::encode(program))}};
    return start;
}

Outcome<System*> RemoteProcesses::system(Application& application) {
    const ApplicationStart& start = application.program()->start();
    const QString name = QStringLiteral("%1:%2").arg(start.host, QString::number(start.port));
    std::unique_ptr<System>& system = m_systems[name];
    if (!system) {
        Outcome<std::unique_ptr<SshSystem>> connected =
            SshSystem::connect({start.host, start.port});
        if (!connected)
            return fail(connected.error());
        system = std::move(*connected);
    }
    return system.get();
}

Outcome<QString> RemoteProcesses::ask(Application& application, const QStringList& command) {
    const Outcome<System*> machine = system(application);
    if (!machine)
        return fail(machine.error());
    const Outcome<CommandResult> result = (*machine)->execute({command});
    if (!result && result.error().kind == FailureKind::Ended)
        m_systems.clear();
    if (!result)
        return fail(result.error());
    return fromNativeBytes(result->standardOutput).trimmed();
}

qint64 RemoteProcesses::residentMemory(Application& application) {
    const Outcome<QString> kilobytes =
        ask(application, {"ps", "-o", "rss=", "-p", QString::number(application.pid)});
    if (kilobytes && !kilobytes->isEmpty())
        return kilobytes->toLongLong() * 1024;
    Inspector::self()->take(kilobytes);
    return -1;
}

qint64 RemoteProcesses::cpuTime(Application& application) {
    const Outcome<QString> seconds =
        ask(application, {"ps", "-o", "cputimes=", "-p", QString::number(application.pid)});
    if (seconds && !seconds->isEmpty())
        return seconds->toLongLong() * 1000;
    Inspector::self()->take(seconds);
    return -1;
}

QString RemoteProcesses::directory(Application& application) {
    return Inspector::self()->take(
        ask(application, {"readlink", QStringLiteral("/proc/%1/cwd").arg(application.pid)}));
}

}  // namespace Tamrix

#include "runner/applications/displaystart.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSysInfo>
#include <algorithm>

#include "platform/objectmodel/display/displaymodel.h"
#include "runner/applications/programdisplay.h"

namespace Tamrix {

namespace {

QStringList commandLineOf(qint64 process) {
    QFile file(QStringLiteral("/proc/%1/cmdline").arg(process));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList words;
    for (const QByteArray& word : file.readAll().split('\0'))
        words.append(QString::fromLocal8Bit(word));
    // There is a null behind the last one, too.
    words.removeLast();
    return words;
}

/// Tells the program's processes, each of which is looked at once.
Display::ProcessTest processTestOf(const std::shared_ptr<StartedProgram>& program) {
    const auto known = std::make_shared<QHash<qint64, bool>>();
    return [program, known](qint64 process) {
        const auto found = known->constFind(process);
        if (found != known->cend())
            return *found;
        return *known->insert(process, program->includes(static_cast<pid_t>(process)));
    };
}

}  // namespace

DisplayStart::DisplayStart(std::shared_ptr<StartedProgram> program)
    : m_program(std::move(program)), m_address(displayAddressOf(m_program->start().program)) {}

ApplicationFacts DisplayStart::factsOf(qint64 windowProcess) const {
    ChildProcess& main = m_program->process();
    ApplicationFacts facts;
    // One that starts another and ends is not what the script works with.
    facts.pid = main.hasEnded() ? windowProcess : main.pid();
    facts.program = QFileInfo(QStringLiteral("/proc/%1/exe").arg(facts.pid)).symLinkTarget();
    if (facts.program.isEmpty())
        facts.program = m_program->start().program.program;
    facts.arguments = commandLineOf(facts.pid).mid(1);
    facts.toolkit = QStringLiteral("X windows, without agent");
    facts.platform = QStringLiteral("xcb");
    facts.osName = QSysInfo::prettyProductName();
    return facts;
}

Outcome<std::unique_ptr<Access>> DisplayStart::look() {
    if (!m_connection) {
        const auto opened = Display::XConnection::open(m_address);
        if (!opened)
            return fail(opened.error());
        m_connection = *opened;
    }
    const Display::ProcessTest isOwn = processTestOf(m_program);
    const Outcome<Display::WindowList> windows = Display::listWindows(*m_connection, isOwn);
    if (!windows)
        return fail(windows.error());
    const auto shown =
        std::find_if(windows->begin(), windows->end(), [&](const Display::WindowFacts& window) {
            // At the start, one of whose process nothing is known is likely another's.
            return window.isVisible && window.pid > 0 && isOwn(window.pid);
        });
    if (shown == windows->end())
        return std::unique_ptr<Access>();
    return std::unique_ptr<Access>(
        std::make_unique<DisplayModel>(m_connection, isOwn, factsOf(shown->pid)));
}

}  // namespace Tamrix

#include "runner/applications/privatehome.h"

#include <QDir>

#include "runner/applications/agentserver.h"

namespace Tamrix {

namespace {

/// The variables by which programs find their folders, and these below the home.
struct HomePart {
    const char* variable;
    const char* folder;
};

const HomePart homeParts[] = {
    {"HOME", ""},
    {"XDG_CONFIG_HOME", "/.config"},
    {"XDG_CACHE_HOME", "/.cache"},
    {"XDG_DATA_HOME", "/.local/share"},
    {"XDG_STATE_HOME", "/.local/state"},
    {"TMPDIR", "/tmp"},
};

}  // namespace

Outcome<> PrivateHome::renew() {
    const QString last = std::exchange(m_path, QString());
    if (!last.isEmpty())
        QDir(last).removeRecursively();
    if (m_folder.path().isEmpty()) {
        if (const Outcome<> made = m_folder.make(randomToken()); !made)
            return made;
    }
    // Another name for each: a program of the last case may still write to what was its home.
    const QString path =
        QStringLiteral("%1/home%2").arg(m_folder.path(), QString::number(++m_number));
    for (const HomePart& part : homeParts) {
        const QString folder = path + QLatin1String(part.folder);
        if (!QDir().mkpath(folder))
            return fail(FailureKind::Failed,
                        QStringLiteral("the folder '%1' can't be made").arg(folder));
    }
    m_path = path;
    return {};
}

ProgramEnvironment PrivateHome::environment() const {
    ProgramEnvironment environment;
    if (m_path.isEmpty())
        return environment;
    for (const HomePart& part : homeParts) {
        environment.append({QLatin1String(part.variable), m_path + QLatin1String(part.folder)});
    }
    return environment;
}

}  // namespace Tamrix

#include "runner/applications/launcher.h"

#include "base/environment.h"
#include "runner/applications/launchers.h"

namespace Tamrix {

const QList<const Launcher*>& Launcher::all() {
    static const QList<const Launcher*> s_launchers = {&pluginLauncher(), &preloadLauncher(),
                                                        &noneLauncher()};
    return s_launchers;
}

const Launcher* Launcher::find(const QString& name) {
    for (const Launcher* launcher : all()) {
        if (launcher->name() == name)
            return launcher;
    }
    return nullptr;
}

QString Launcher::namesText() {
    QStringList names;
    for (const Launcher* launcher : all())
        names.append(QLatin1Char('\'') + launcher->name() + QLatin1Char('\''));
    const QString last = names.takeLast();
    return QStringLiteral("%1 or %2").arg(names.join(QLatin1String(", ")), last);
}

QString joinedWithOthers(const QString& ours, const QString& variable, QLatin1Char separator,
                         ListPlace place) {
    const QString others = Environment::getVariable(variable);
    if (others.isEmpty())
        return ours;
    return place == ListPlace::InFront ? ours + separator + others : others + separator + ours;
}

}  // namespace Tamrix

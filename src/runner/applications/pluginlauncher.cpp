#include "base/environment.h"
#include "runner/applications/launchers.h"
#include "wire/protocol.h"

namespace Tamrix {

namespace {

class PluginLauncher : public Launcher {
public:
    QString name() const override { return QStringLiteral("plugin"); }

    void prepare(ProgramStart* start, const AgentAddress& address) const override {
        const QString prefix = Environment::getVariable(QLatin1String(prefixVariable));
        const QString pluginPath = QStringLiteral("QT_PLUGIN_PATH");
        const QString genericPlugins = QStringLiteral("QT_QPA_GENERIC_PLUGINS");
        start->environment += ProgramEnvironment{
            {QLatin1String(prefixVariable), prefix},
            {QLatin1String(Wire::connectVariable), address.socketPath},
            {QLatin1String(Wire::tokenVariable), address.token},
            // The first plug-in of a name wins.
            {pluginPath, joinedWithOthers(prefix + QLatin1String("/lib/qtplugins"), pluginPath,
                                          QLatin1Char(':'), ListPlace::InFront)},
            {genericPlugins, joinedWithOthers(QStringLiteral("tamrixagent"), genericPlugins,
                                              QLatin1Char(','), ListPlace::Behind)}};
    }
};

}  // namespace

const Launcher& pluginLauncher() {
    static const PluginLauncher launcher;
    return launcher;
}

}  // namespace Tamrix

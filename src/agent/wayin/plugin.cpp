#include <QGenericPlugin>

#include "agent/wayin/agentloader.h"

namespace Tamrix::Agent {

/// What Qt loads for QT_QPA_GENERIC_PLUGINS=tamrixagent while it makes the application object.
class AgentPlugin : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "tamrixagent.json")

public:
    QObject* create(const QString& /*key*/, const QString& /*arguments*/) override {
        if (isWanted())
            loadAgent("../..");
        // Qt complains about a plug-in that makes nothing.
        return new QObject;
    }
};

}  // namespace Tamrix::Agent

#include "plugin.moc"

#include <QGenericPlugin>

#include "agent/wayin/agentloader.h"

#if QT_VERSION_MAJOR == 5
// Programs with Qt 6 look at this plug-in, too, and would tell on standard error that it is none
// for them. They take no writable section for one of metadata, and Qt 5 does not mind.
#undef QT_PLUGIN_METADATA_SECTION
#define QT_PLUGIN_METADATA_SECTION __attribute__((section(".qtmetadata,\"aw\",@progbits#"), used))
#endif

namespace Tamrix::Agent {

/// What Qt loads for QT_QPA_GENERIC_PLUGINS=tamrixagent while it makes the application object.
class AgentPlugin : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "tamrixagent.json")

public:
    QObject* create(const QString& /*key*/, const QString& /*arguments*/) override {
        if (isWanted())
            loadAgent("../..", QT_VERSION_MAJOR);
        // Qt complains about a plug-in that makes nothing.
        return new QObject;
    }
};

}  // namespace Tamrix::Agent

#include "plugin.moc"

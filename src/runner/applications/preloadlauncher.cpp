#include "base/environment.h"
#include "runner/applications/launchers.h"

namespace Tamrix {

namespace {

class PreloadLauncher : public Launcher {
public:
    QString name() const override { return QStringLiteral("preload"); }

    void prepare(ProgramStart* start, const AgentAddress& address) const override {
        // Programs of the program may take the plug-in.
        pluginLauncher().prepare(start, address);
        const QString prefix = Environment::getVariable(QLatin1String(prefixVariable));
        const QString preload = QStringLiteral("LD_PRELOAD");
        start->environment.append(
            {preload, joinedWithOthers(prefix + QLatin1String("/lib/libtamrixhook.so"), preload,
                                       QLatin1Char(':'), ListPlace::InFront)});
    }
};

}  // namespace

const Launcher& preloadLauncher() {
    static const PreloadLauncher launcher;
    return launcher;
}

}  // namespace Tamrix

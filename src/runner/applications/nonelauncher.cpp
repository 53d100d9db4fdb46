#include "runner/applications/launchers.h"

namespace Tamrix {

namespace {

class NoneLauncher : public Launcher {
public:
    QString name() const override { return QStringLiteral("none"); }
    bool bringsAgent() const override { return false; }

    void prepare(ProgramStart* start, const AgentAddress& /*address*/) const override {
        // Toolkits that could appear elsewhere appear on the X display. What the start says counts
        // more.
        start->environment = ProgramEnvironment{{QStringLiteral("WAYLAND_DISPLAY"), QString()},
                                                {QStringLiteral("GDK_BACKEND"), QStringLiteral("x11")},
                                                {QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb")},
                                                {QStringLiteral("SDL_VIDEODRIVER"), QStringLiteral("x11")}} +
                             start->environment;
    }
};

}  // namespace

const Launcher& noneLauncher() {
    static const NoneLauncher s_launcher;
    return s_launcher;
}

}  // namespace Tamrix

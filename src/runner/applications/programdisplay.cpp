#include "runner/applications/programdisplay.h"

#include "base/environment.h"
#include "platform/objectmodel/display/screengrab.h"

namespace Tamrix {

namespace {

/// What the program sees in a variable of its environment.
QString variableOf(const ProgramStart& start, const QString& name) {
    QString value = Environment::getVariable(name);
    for (const auto& [changed, newValue] : start.environment) {
        if (changed == name)
            value = newValue;
    }
    return value;
}

/// The place of a file of cookies that is not that of this process.
QString authorityOf(const ProgramStart& start) {
    const QString name = QStringLiteral("XAUTHORITY");
    const QString file = variableOf(start, name);
    return file == Environment::getVariable(name) ? QString() : file;
}

}  // namespace

Display::DisplayAddress displayAddressOf(const ProgramStart& start) {
    return {variableOf(start, QStringLiteral("DISPLAY")), authorityOf(start)};
}

Outcome<QImage> displayPictureOf(const ProgramStart& start) {
    const auto connection = Display::XConnection::open(displayAddressOf(start));
    if (!connection)
        return fail(connection.error());
    return Display::ScreenGrab(*connection).grab((*connection)->rootGeometry());
}

}  // namespace Tamrix

#include "tools/objectmaptool/request.h"

namespace Tamrix {

Outcome<MapRequest> parseMapRequest(const QStringList& arguments) {
    MapRequest request;
    QString mode;
    bool isScriptMap = false;
    const auto wrong = [](const QString& text) {
        return fail(FailureKind::BadArgument,
                    QStringLiteral("%1. Usage: objectmaptool --mode getEntryMap --scriptMap "
                                   "--scriptedObjectMapPath FILE [--standardInput]")
                        .arg(text));
    };
    for (int index = 0; index < arguments.size(); ++index) {
        const QString& option = arguments.at(index);
        if (option == QLatin1String("--scriptMap")) {
            isScriptMap = true;
        } else if (option == QLatin1String("--standardInput")) {
            request.readsStandardInput = true;
        } else if (option == QLatin1String("--mode") ||
                   option == QLatin1String("--scriptedObjectMapPath")) {
            if (++index == arguments.size())
                return wrong(QStringLiteral("%1 needs a value").arg(option));
            (option == QLatin1String("--mode") ? mode : request.path) = arguments.at(index);
        } else {
            return wrong(QStringLiteral("There is no option '%1'").arg(option));
        }
    }
    if (mode != QLatin1String("getEntryMap"))
        return wrong(QStringLiteral("There is no mode '%1'").arg(mode));
    if (!isScriptMap || request.path.isEmpty())
        return wrong(QStringLiteral("The script of the map is missing"));
    return request;
}

}  // namespace Tamrix

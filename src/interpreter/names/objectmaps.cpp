#include "interpreter/names/objectmaps.h"

#include <QFileInfo>
#include <memory>

#include "interpreter/bridge/scriptlanguage.h"
#include "platform/objectmodel/scriptedobjectmap.h"

namespace Tamrix {

namespace {

Outcome<std::unique_ptr<ObjectMap>> openScript(const ScriptLanguageInformation& language,
                                               const QString& path) {
    const auto failure = [&path](const QString& reason) {
        return fail(FailureKind::Failed,
                    QStringLiteral("The object map '%1' can't be used: %2").arg(path, reason));
    };
    const ScriptLanguagePlugin plugin(language.pluginName);
    if (!plugin.lastErrorMessage().isEmpty())
        return failure(plugin.lastErrorMessage());
    std::unique_ptr<ObjectMap> map(plugin.scriptedObjectMap(path));
    if (!map) {
        return failure(
            QStringLiteral("the plug-in for %1 has no maps of names").arg(language.name));
    }
    return map;
}

}  // namespace

QString suiteObjectMap(const QString& suiteDirectory) {
    const QString shared = suiteDirectory + QLatin1String("/shared/");
    const QString plain = shared + QLatin1String("objectnames.tsv");
    if (QFileInfo::exists(plain))
        return plain;
    for (const ScriptLanguageInformation* language : ScriptLanguageInformation::knownLanguages()) {
        const QString script = shared + QLatin1String("scripts/names.") + language->suffix;
        if (QFileInfo::exists(script))
            return script;
    }
    return plain;
}

Outcome<std::unique_ptr<ObjectMap>> openObjectMap(const QString& path) {
    if (const auto* const language = ScriptLanguageInformation::forFile(QFileInfo(path)))
        return openScript(*language, path);
    auto map = std::make_unique<ObjectMap>();
    map->setPath(path);
    if (QFileInfo::exists(path)) {
        if (const Outcome<> loaded = map->load(path); !loaded)
            return fail(loaded.error());
    }
    return map;
}

Outcome<> useObjectMap(const QString& path) {
    const auto* const script = dynamic_cast<ScriptedObjectMap*>(ObjectMap::self());
    if (script && script->path() == path)
        return {};
    ObjectMap::use(nullptr);
    Outcome<std::unique_ptr<ObjectMap>> map = openObjectMap(path);
    if (!map)
        return fail(map.error());
    ObjectMap::use(*std::move(map));
    return {};
}

}  // namespace Tamrix

#include "interpreter/names/objectmaps.h"

#include <QFileInfo>
#include <memory>

#include "interpreter/bridge/scriptlanguage.h"
#include "platform/objectmodel/scriptedobjectmap.h"

namespace Tamrix {

namespace {

Outcome<> useScript(const ScriptLanguageInformation& language, const QString& path) {
    const auto* const used = dynamic_cast<ScriptedObjectMap*>(ObjectMap::self());
    if (used && used->path() == path)
        return {};
    ObjectMap::use(nullptr);
    const ScriptLanguagePlugin plugin(language.pluginName);
    if (!plugin.lastErrorMessage().isEmpty()) {
        return fail(FailureKind::Failed, QStringLiteral("The object map '%1' can't be used: %2")
                                             .arg(path, plugin.lastErrorMessage()));
    }
    std::unique_ptr<ObjectMap> map(plugin.scriptedObjectMap(path));
    if (!map) {
        return fail(FailureKind::Failed,
                    QStringLiteral("The object map '%1' can't be used: the plug-in for %2 has no "
                                   "maps of names")
                        .arg(path, language.name));
    }
    ObjectMap::use(std::move(map));
    return {};
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

Outcome<> useObjectMap(const QString& path) {
    if (const auto* const language = ScriptLanguageInformation::forFile(QFileInfo(path)))
        return useScript(*language, path);
    ObjectMap::use(nullptr);
    if (QFileInfo::exists(path))
        return ObjectMap::self()->load(path);
    ObjectMap::self()->setPath(path);
    return {};
}

}  // namespace Tamrix

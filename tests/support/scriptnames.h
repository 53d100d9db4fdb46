#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <vector>

#include "interpreter/names/objectmaps.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectmap.h"
#include "support/environmentguard.h"
#include "support/files.h"
#include "support/golden.h"
#include "support/namedobject.h"
#include "support/printqt.h"

namespace Tamrix::Test {

/// Maps of object names that are scripts of one language, read by the real program.
class ScriptNames : public testing::Test {
protected:
    /// `installation` has the program that reads them.
    ScriptNames(const char* suffix, const char* installation)
        : prefix{"TAMRIX_PREFIX", installation}, m_suffix(suffix) {
        Inspector::self()->reset();
    }
    ~ScriptNames() override { ObjectMap::use(nullptr); }

    /// Makes this text the map in use, as a file that nothing knows yet.
    void use(const QByteArray& script) {
        path = folder.filePath(QString("map%1/names.%2").arg(++m_count).arg(m_suffix));
        EXPECT_TRUE(writeFile(path, script));
        EXPECT_TRUE(useObjectMap(path));
    }
    QString realName(const QString& name) {
        const Outcome<ObjectName> resolved = ObjectMap::self()->resolve(name);
        return resolved ? resolved->qualifiedName() : resolved.error().text;
    }
    QString add(const QString& realName) {
        const Outcome<QString> key =
            ObjectMap::self()->add(SharedPtr<Object>(new NamedObject(realName)));
        return key ? *key : key.error().text;
    }

    struct FaultyScript {
        const char* what;
        QByteArray script;
    };
    /// What is told of each script.
    QString faults(const std::vector<FaultyScript>& rows) {
        QString text;
        for (const FaultyScript& row : rows) {
            use(row.script);
            text += QStringLiteral("%1:\n%2\n\n")
                        .arg(row.what, ObjectMap::self()->symbolicNames().error().text);
        }
        return Normaliser().path(folder.path(), "<FOLDER>")(text);
    }

    QTemporaryDir folder;
    QString path;
    const EnvironmentGuard prefix;

private:
    QString m_suffix;
    int m_count = 0;
};

}  // namespace Tamrix::Test

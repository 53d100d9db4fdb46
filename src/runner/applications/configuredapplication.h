#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

#include "runner/applications/launcher.h"

namespace Tamrix {

/// An application under test as a suite's config.xml describes it. Plain data; paths stand as they
/// are written.
struct ConfiguredApplication {
    QString name;
    QString path;
    QStringList arguments;
    /// Empty when the file says nothing.
    QString workingDirectory;
    /// The way in that the attribute "hook" names. Not null.
    const Launcher* launcher = &Launcher::standard();
    QList<QPair<QString, QString>> environment;
};

}  // namespace Tamrix

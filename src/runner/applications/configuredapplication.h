#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

namespace Tamrix {

/// An application under test as a suite's config.xml describes it. Plain data; paths stand as they
/// are written.
struct ConfiguredApplication {
    QString name;
    QString path;
    QStringList arguments;
    /// Empty when the file says nothing.
    QString workingDirectory;
    /// hook="preload": the agent comes in by a preloaded library, for a program that passes over
    /// Qt's plug-ins.
    bool preloadsAgent = false;
    QList<QPair<QString, QString>> environment;
};

}  // namespace Tamrix

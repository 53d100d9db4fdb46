#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace Tamrix {

/// What runs the shards of a suite on the processors of many machines: programs that people have
/// for this, which are told by a script what to do.
enum class BatchEngine { Parallel, Slurm };

/// What is to be run. All paths are absolute, and the same on all machines.
struct BatchRun {
    BatchEngine engine = BatchEngine::Parallel;
    /// The suite's name.
    QString name;
    /// This program.
    QString runner;
    /// Where relative paths of the arguments count from.
    QString workingDirectory;
    /// Takes the scripts, a folder "shard-I" for each shard, and the merged journal.
    QString directory;
    int workers = 1;
    int shards = 1;
    /// A file with a machine a line; empty for this one. For GNU parallel alone.
    QString hosts;
    /// How many machines these are.
    int hostCount = 1;
    /// Goes on with what an earlier run of the script has begun.
    bool resumes = false;
    /// Those of "run", from the suite on, without what tells shards and results.
    QStringList runArguments;
    QStringList scriptArguments;
    /// Those of "merge", without the bundles.
    QStringList mergeArguments;
};

/// A file of the folder.
struct BatchScript {
    QString name;
    QString text;
};

/// The scripts for a run. The first is the one to start: it starts the engine, waits, merges, and
/// exits as "merge" does.
QList<BatchScript> batchScripts(const BatchRun& run);

}  // namespace Tamrix

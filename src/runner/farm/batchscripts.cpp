#include "runner/farm/batchscripts.h"

#include "runner/processes/shellwords.h"

namespace Tamrix {

namespace {

/// How often a shard is tried that has lost its process or its machine.
constexpr int tries = 3;

const QLatin1String startName("farm.sh");
const QLatin1String shardName("shard.sh");
const QLatin1String mergeName("merge.sh");

QString inFolder(const BatchRun& run, const QString& name) {
    return run.directory + QLatin1Char('/') + name;
}

/// The script of one shard, whose number is its argument.
BatchScript shardScript(const BatchRun& run) {
    QStringList words = QStringList{run.runner, QStringLiteral("run")} + run.runArguments;
    QString command = quotedShellWords(words);
    command +=
        QStringLiteral(" \\\n    --shard \"$1/%1\" --result-dir %2/shard-\"$1\" --no-console")
            .arg(QString::number(run.shards), quotedShellWord(run.directory));
    if (!run.scriptArguments.isEmpty())
        command += QLatin1String(" -- ") + quotedShellWords(run.scriptArguments);
    return {shardName,
            QStringLiteral("#!/bin/sh\n"
                           "# The shard $1 of the suite '%1'. That cases have failed (1) is a "
                           "result; any other code tells that\n"
                           "# there is none, and the shard is tried again.\n"
                           "cd %2 || exit 2\n"
                           "%3\n"
                           "test $? -le 1\n")
                .arg(run.name, quotedShellWord(run.workingDirectory), command)};
}

BatchScript mergeScript(const BatchRun& run) {
    QStringList bundles;
    for (int number = 1; number <= run.shards; ++number)
        bundles += inFolder(run, QStringLiteral("shard-%1").arg(number));
    return {mergeName, QStringLiteral("#!/bin/sh\n"
                                      "# One report of all shards of the suite '%1'.\n"
                                      "cd %2 || exit 2\n"
                                      "exec %3 \\\n    %4 \\\n    %5\n")
                           .arg(run.name, quotedShellWord(run.workingDirectory),
                                quotedShellWords({run.runner, QStringLiteral("merge")}),
                                quotedShellWords(bundles), quotedShellWords(run.mergeArguments))};
}

/// The end of the script that is started: what was interrupted is merged, too.
QString ending(const BatchRun& run) {
    return QStringLiteral(
               "sh %1\ncode=$?\n[ -z \"$signal\" ] || code=$((128 + signal))\nexit $code\n")
        .arg(quotedShellWord(inFolder(run, mergeName)));
}

BatchScript parallelScript(const BatchRun& run) {
    QStringList words{QStringLiteral("parallel"),
                      QStringLiteral("--will-cite"),
                      QStringLiteral("--jobs"),
                      QString::number((run.workers + run.hostCount - 1) / run.hostCount),
                      QStringLiteral("--joblog"),
                      inFolder(run, QStringLiteral("joblog"))};
    if (run.resumes)
        words += QStringLiteral("--resume-failed");
    words += QStringList{QStringLiteral("--retries"), QString::number(tries)};
    if (!run.hosts.isEmpty())
        words += QStringList{QStringLiteral("--sshloginfile"), run.hosts};
    return {
        startName,
        QStringLiteral("#!/bin/sh\n"
                       "# The suite '%1' in %2 shards, %3 at a time, with GNU parallel.\n"
                       "signal=\n"
                       "trap 'signal=2' INT\n"
                       "trap 'signal=15' TERM\n"
                       "bar=\n"
                       "[ ! -t 2 ] || bar=--bar\n"
                       "seq %2 | %4 $bar sh %5\n"
                       "%6")
            .arg(run.name, QString::number(run.shards), QString::number(run.workers),
                 quotedShellWords(words), quotedShellWord(inFolder(run, shardName)), ending(run))};
}

QList<BatchScript> slurmScripts(const BatchRun& run) {
    const BatchScript array{
        QStringLiteral("array.sh"),
        QStringLiteral("#!/bin/sh\n"
                       "#SBATCH --job-name=%1\n"
                       "#SBATCH --array=1-%2%%3\n"
                       "#SBATCH --requeue\n"
                       "#SBATCH --open-mode=append\n"
                       "#SBATCH --output=%4\n"
                       "# A node that is lost gives its shard back; what a process loses is tried "
                       "again here.\n"
                       "for try in $(seq %5); do\n"
                       "    sh %6 \"$SLURM_ARRAY_TASK_ID\" && exit\n"
                       "done\n"
                       "exit 1\n")
            .arg(quotedShellWord(run.name), QString::number(run.shards),
                 QString::number(run.workers),
                 quotedShellWord(inFolder(run, QStringLiteral("shard-%a.log"))),
                 QString::number(tries), quotedShellWord(inFolder(run, shardName)))};
    const BatchScript start{
        startName,
        QStringLiteral(
            "#!/bin/sh\n"
            "# The suite '%1' in %2 shards, %3 at a time, with Slurm: an array job, and a job that "
            "merges behind it.\n"
            "job=$(sbatch --parsable %4) || exit 2\n"
            "job=${job%%;*}\n"
            "signal=\n"
            "trap 'signal=2; scancel \"$job\"' INT\n"
            "trap 'signal=15; scancel \"$job\"' TERM\n"
            "if [ -t 2 ]; then\n"
            "    while left=$(squeue --noheader --array --jobs \"$job\" 2>/dev/null | wc -l) && [ "
            "\"$left\" -gt 0 ]; do\n"
            "        printf '\\r%s of %2 shards left  ' \"$left\" >&2\n"
            "        sleep 2\n"
            "    done\n"
            "    echo >&2\n"
            "fi\n"
            "sbatch --quiet --wait --dependency=afterany:\"$job\" --job-name=%7 --output=%5 "
            "%6\n"
            "code=$?\n"
            "cat %5\n"
            "[ -z \"$signal\" ] || code=$((128 + signal))\n"
            "exit $code\n")
            .arg(run.name, QString::number(run.shards), QString::number(run.workers),
                 quotedShellWord(inFolder(run, array.name)),
                 quotedShellWord(inFolder(run, QStringLiteral("merge.log"))),
                 quotedShellWord(inFolder(run, mergeName)),
                 quotedShellWord(run.name + QLatin1String("-merge")))};
    return {start, array};
}

}  // namespace

QList<BatchScript> batchScripts(const BatchRun& run) {
    QList<BatchScript> scripts = run.engine == BatchEngine::Slurm
                                     ? slurmScripts(run)
                                     : QList<BatchScript>{parallelScript(run)};
    scripts += shardScript(run);
    scripts += mergeScript(run);
    return scripts;
}

}  // namespace Tamrix

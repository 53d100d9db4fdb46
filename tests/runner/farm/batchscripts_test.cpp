#include "runner/farm/batchscripts.h"

#include <gtest/gtest.h>

#include "support/golden.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

TEST(BatchScripts, AreReadableAndQuoteWhatIsNotTheirs) {
    BatchRun run;
    run.name = "suite_shop";
    run.runner = "/opt/tamrix/bin/tamrixrunner";
    run.workingDirectory = "/home/me/my tests";
    run.directory = "/net/results";
    run.workers = 8;
    run.shards = 32;
    run.runArguments = QStringList{"suite_shop", "--retries", "1", "it's"};
    run.scriptArguments = QStringList{"--fast", "a b"};
    run.mergeArguments =
        QStringList{"--to", "json:/net/results/journal.jsonl", "--to", "console:-"};
    for (const BatchEngine engine : {BatchEngine::Parallel, BatchEngine::Slurm}) {
        run.engine = engine;
        const bool isSlurm = engine == BatchEngine::Slurm;
        run.hosts = isSlurm ? QString() : QString("/home/me/hosts");
        run.hostCount = isSlurm ? 1 : 3;
        QString text;
        for (const BatchScript& script : batchScripts(run))
            text += "=== " + script.name + "\n" + script.text;
        EXPECT_TRUE(Tamrix::Test::compareWithGolden(
            isSlurm ? "farm/slurm.txt" : "farm/parallel.txt", text));
    }
}

}  // namespace
}  // namespace Tamrix

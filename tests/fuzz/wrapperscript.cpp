// The init script of a toolkit wrapper, with the commands that it sends.

#include <QString>

#include "fuzz/fuzztarget.h"
#include "fuzz/quietqt.h"
#include "interpreter/run/wrapperdescriptor.h"
#include "platform/objectmodel/inspector.h"
#include "platform/testresult/testresult.h"
#include "support/recordingreport.h"

using namespace Tamrix;

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    Fuzz::silenceQt();
    const QString text =
        QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));
    Test::RecordingReport report;
    TestResult result(&report);
    const bool isGood = evalInitScript(&result, text);
    fuzzRequire(isGood == report.results().empty(), "an error becomes a result");
    Inspector::self()->reset();
    return 0;
}

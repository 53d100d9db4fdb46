// The file of a verification point.

#include "platform/verification/verificationpointfile.h"

#include <QByteArray>

#include "fuzz/fuzztarget.h"

using namespace Tamrix;

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    const auto point = parseVerificationPoint(
        QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size)));
    if (!point) {
        fuzzRequire(!point.error().text.isEmpty(), "a failure has a text");
        return 0;
    }
    const QByteArray json = verificationPointJson(*point);
    const auto again = parseVerificationPoint(json);
    fuzzRequire(again.has_value(), "what was read can be written");
    fuzzRequire(verificationPointJson(*again) == json, "what was written stays");
    return 0;
}

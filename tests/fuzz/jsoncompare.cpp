// Two JSON texts compared, and one of them in one layout.

#include "comparison/jsoncompare.h"

#include <QJsonDocument>
#include <QJsonParseError>

#include "comparison/difftext.h"
#include "fuzz/compareinput.h"
#include "fuzz/fuzztarget.h"
#include "fuzz/quietqt.h"

namespace {

/// What is strict JSON is JSON to any other reader, unless a limit of that reader forbids it.
void checkSyntax(const QString& text) {
    Json::Value value;
    QString message;
    if (!Tamrix::readJSON(text, &value, &message))
        return;
    QJsonParseError error;
    QJsonDocument::fromJson(text.toUtf8(), &error);
    fuzzRequire(error.error == QJsonParseError::NoError ||
                    error.error == QJsonParseError::IllegalNumber ||
                    error.error == QJsonParseError::DeepNesting ||
                    error.error == QJsonParseError::DocumentTooLarge,
                "a second reader takes it, too");
}

}  // namespace

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    Tamrix::Fuzz::silenceQt();
    const auto [first, second] = Tamrix::Fuzz::twoDocuments(data, size);
    const QString a = Tamrix::toUtfString(first);
    const QString b = Tamrix::toUtfString(second);
    checkSyntax(a);
    QString message;
    QString formatted;
    const bool equal = Tamrix::compareJson(a, b, &message);
    fuzzRequire(equal == message.isEmpty(), "a difference has a message");
    if (equal) {
        fuzzRequire(Tamrix::compareJson(b, a, &message), "equality goes both ways");
        fuzzRequire(Tamrix::formatJson(a, &formatted), "what can be compared can be formatted");
    }
    return 0;
}

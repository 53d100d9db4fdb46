#include "runner/mcp/protocol/json.h"

#include <memory>
#include <string>

#include "base/utf8.h"
#include "base/wholetext.h"

namespace Tamrix::Mcp {

namespace {

/// How deep values may be nested in each other.
constexpr int deepest = 64;

/// jsoncpp's message on one line: "* Line 1, Column 2\n  Syntax error: ..."
QString oneLine(const std::string& errors) {
    return QString::fromStdString(errors).simplified().remove(QLatin1String("* "));
}

}  // namespace

Outcome<Json::Value> parseJson(const QByteArray& text) {
    const int sound = validUtf8Length(text.begin(), text.end());
    if (sound < text.size())
        return fail(FailureKind::BadArgument,
                    QStringLiteral("the message is no UTF-8 at byte %1").arg(sound + 1));
    Json::CharReaderBuilder builder;
    builder["allowComments"] = false;
    builder["allowTrailingCommas"] = false;
    builder["failIfExtra"] = true;
    builder["stackLimit"] = deepest;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value value;
    std::string errors;
    try {
        if (reader->parse(text.begin(), text.end(), &value, &errors))
            return value;
    } catch (const Json::Exception& error) {
        errors = error.what();
    }
    return fail(FailureKind::BadArgument,
                QStringLiteral("the message is no JSON: %1").arg(oneLine(errors)));
}

QByteArray jsonLine(const Json::Value& value) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = true;
    const std::string written = Json::writeString(builder, value);
    const QByteArray line(written.data(), static_cast<int>(written.size()));
    if (validUtf8Length(line.begin(), line.end()) == line.size())
        return line;
    return wholeUtf8(line).toUtf8();
}

Json::Value jsonText(const QString& text) {
    return text.toUtf8().toStdString();
}

QString textOf(const Json::Value& value) {
    const std::string text = value.asString();
    return QString::fromUtf8(text.data(), static_cast<int>(text.size()));
}

}  // namespace Tamrix::Mcp

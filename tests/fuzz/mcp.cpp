// What a client of the Model Context Protocol sends.

#include <QByteArray>

#include "base/utf8.h"
#include "fuzz/fuzztarget.h"
#include "fuzz/quietqt.h"
#include "runner/mcp/server.h"
#include "runner/mcp/tools/arguments.h"

using namespace Tamrix;
using namespace Tamrix::Mcp;

namespace {

/// A client that sends the input in two pieces and goes away.
class InputStream : public ByteReader, public ByteWriter {
public:
    explicit InputStream(const QByteArray& input) : m_input(input) {}

    State read(QByteArray* bytes) override {
        const int length = m_turn++ == 0 ? m_input.size() / 2 : m_input.size();
        bytes->append(m_input.left(length));
        m_input.remove(0, length);
        return m_turn > 2 ? State::Ended : State::Open;
    }
    bool write(const QByteArray& bytes) override {
        fuzzRequire(bytes.endsWith('\n') && bytes.count('\n') == 1, "an answer is one line");
        fuzzRequire(validUtf8Length(bytes.begin(), bytes.end()) == bytes.size(),
                    "an answer is sound UTF-8");
        fuzzRequire(parseJson(bytes).has_value(), "an answer is JSON");
        return true;
    }

private:
    QByteArray m_input;
    int m_turn = 0;
};

/// One parameter of each type.
const std::vector<Tool>& tools() {
    static const std::vector<Tool> s_tools{
        {"say",
         "",
         {{"text", ParameterType::Text, Parameter::Required},
          {"integer", ParameterType::Integer, Parameter::Optional},
          {"number", ParameterType::Number, Parameter::Optional},
          {"flag", ParameterType::Flag, Parameter::Optional},
          {"path", ParameterType::Path, Parameter::Optional},
          {"properties", ParameterType::Properties, Parameter::Optional}},
         nullptr}};
    return s_tools;
}

Outcome<ToolAnswer> say(const Tool& tool, const Json::Value& values) {
    const Outcome<Arguments> arguments = Arguments::read(tool, values);
    if (!arguments)
        return fail(arguments.error());
    return ToolAnswer{arguments->text("text") +
                      QString::number(arguments->integer("integer").value_or(0)) +
                      arguments->path("path").join(QLatin1Char('.'))};
}

}  // namespace

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    Fuzz::silenceQt();
    const QByteArray input(reinterpret_cast<const char*>(data), static_cast<int>(size));
    InputStream stream(input);
    Server server(stream, stream, tools(), say);
    while (server.serve())
        server.serveMeanwhile();
    return 0;
}

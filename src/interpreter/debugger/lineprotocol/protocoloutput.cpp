#include "interpreter/debugger/lineprotocol/protocoloutput.h"

#include <cstdio>

#include "base/protocolescapes.h"

namespace Tamrix {

namespace {

void write(const std::string& line, std::FILE* stream) {
    std::fwrite(line.data(), 1, line.size(), stream);
    std::fflush(stream);
}

}  // namespace

void ProtocolOutput::print(const std::string& text) const {
    write(linePrefix(m_dialect) + text + '\n', stdout);
}

void ProtocolOutput::fail(const std::string& text) const {
    write(linePrefix(m_dialect) + text + '\n', stderr);
}

std::string ProtocolOutput::escaped(const QString& text) const {
    return encoded(escapeForVariablePrinting(text));
}

}  // namespace Tamrix

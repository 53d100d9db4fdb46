#include "interpreter/debugger/lineprotocol/protocoltext.h"

#include "base/stringconversion.h"

namespace Tamrix {

const char* linePrefix(ProtocolDialect dialect) {
    return dialect == ProtocolDialect::Terminal ? "" : "TDBG:";
}

std::string encodeForDialect(const QString& text, ProtocolDialect dialect) {
    return dialect == ProtocolDialect::Terminal ? utf8ToLocal8Bit(text.toStdString())
                                                : text.toStdString();
}

}  // namespace Tamrix

#pragma once

#include <string>

namespace Tamrix::OCR {

/// The text of the exception of this very type or one derived from it that `call` throws; empty
/// when it throws none.
template <typename Exception, typename Call>
std::string thrownText(Call call) {
    try {
        call();
    } catch (const Exception& exception) {
        return exception.what();
    }
    return {};
}

}  // namespace Tamrix::OCR

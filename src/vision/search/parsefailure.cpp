#include "vision/search/parsefailure.h"

#include <stdexcept>

namespace Tamrix::Vision {

void failParsing(const QString& text) {
    throw std::runtime_error(text.toStdString());
}

}  // namespace Tamrix::Vision

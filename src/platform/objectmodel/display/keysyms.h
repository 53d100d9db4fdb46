#pragma once

#include <QString>

#include "base/outcome.h"
#include "wire/keynames.h"

namespace Tamrix::Display {

/// The number by which X knows what a key gives. Fails for keys that X keyboards have not.
Outcome<quint32> keySymOf(const Wire::Key& key);
/// That of a character, given as a Unicode code point.
quint32 keySymOfCharacter(uint character);

}  // namespace Tamrix::Display

#include "interpreter/language/valueequality.h"

#include <algorithm>

namespace Tamrix {

bool areEqualLists(const ScriptArgument& left, const ScriptArgument& right,
                   const AreEqual& areEqual) {
    if (!left.isList() || !right.isList())
        return false;
    const ScriptArgument::List first = left.toList();
    const ScriptArgument::List second = right.toList();
    return std::equal(first.begin(), first.end(), second.begin(), second.end(), areEqual);
}

bool areEqualMaps(const ScriptArgument& left, const ScriptArgument& right,
                  const AreEqual& areEqual) {
    if (!left.isMap() || !right.isMap())
        return false;
    // Both in the order of their keys.
    const ScriptArgument::Map first = left.toMap();
    const ScriptArgument::Map second = right.toMap();
    return std::equal(first.begin(), first.end(), second.begin(), second.end(),
                      [&areEqual](const auto& one, const auto& other) {
                          return one.first == other.first && areEqual(one.second, other.second);
                      });
}

}  // namespace Tamrix

#include "plugins/tcl/containers.h"

#include <algorithm>

#include "platform/objectmodel/objectmap.h"
#include "platform/objectmodel/objectname.h"
#include "plugins/tcl/conversion.h"
#include "plugins/tcl/valuetype.h"

namespace Tamrix::TclPlugin {

namespace {

bool hasType(Tcl_Obj* dictionary) {
    const auto entries = entriesOf(dictionary);
    return std::any_of(entries.begin(), entries.end(),
                       [](const auto& entry) { return bytesOf(entry.first) == "type"; });
}

bool mayBeName(Tcl_Obj* property, Tcl_Obj* value) {
    const ValueType type = typeOf(value);
    return type == ValueType::Dictionary ||
           (type == ValueType::Text && !isTextProperty(textOf(property)));
}

}  // namespace

std::span<Tcl_Obj* const> elementsOf(Tcl_Obj* list) {
    int count = 0;
    Tcl_Obj** elements = nullptr;
    if (Tcl_ListObjGetElements(nullptr, list, &count, &elements) != TCL_OK)
        return {};
    return {elements, static_cast<std::size_t>(count)};
}

std::vector<std::pair<Tcl_Obj*, Tcl_Obj*>> entriesOf(Tcl_Obj* dictionary) {
    std::vector<std::pair<Tcl_Obj*, Tcl_Obj*>> entries;
    Tcl_DictSearch search;
    Tcl_Obj* key = nullptr;
    Tcl_Obj* value = nullptr;
    int isDone = 0;
    if (Tcl_DictObjFirst(nullptr, dictionary, &search, &key, &value, &isDone) != TCL_OK)
        return entries;
    for (; !isDone; Tcl_DictObjNext(&search, &key, &value, &isDone))
        entries.emplace_back(key, value);
    Tcl_DictObjDone(&search);
    return entries;
}

TclRef nameDictionary(Tcl_Obj* value, int depth) {
    TclRef dictionary(Tcl_DuplicateObj(value));
    const auto entries = entriesOf(dictionary.get());
    if (entries.empty())
        return {};
    // A name that is nested deeper is refused by whoever reads it.
    if (depth > maximalNameDepth)
        return dictionary;
    for (const auto& [property, part] : entries) {
        if (!mayBeName(property, part))
            continue;
        const TclRef nested = nameDictionary(part, depth + 1);
        if (nested && (typeOf(part) == ValueType::Dictionary || hasType(nested.get())))
            Tcl_DictObjPut(nullptr, dictionary.get(), property, nested.get());
    }
    return dictionary;
}

}  // namespace Tamrix::TclPlugin

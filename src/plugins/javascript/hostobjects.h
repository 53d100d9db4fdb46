#pragma once

#include <QString>
#include <variant>

#include "interpreter/bridge/nativescripttype.h"
#include "interpreter/language/heldrecord.h"
#include "interpreter/objects/members.h"
#include "platform/objectmodel/applicationcontext.h"
#include "platform/objectmodel/object.h"
#include "plugins/javascript/engineapi.h"
#include "shared/testdata/testdataset.h"

namespace Tamrix::JavaScriptPlugin {

// Objects of the script that hold something of ours. They end it when they are collected, on the
// script thread.

using Held =
    std::variant<SharedPtr<Object>, SharedPtr<NativeScriptObject>, SharedPtr<ApplicationContext>,
                 SharedPtr<TestDataSet>, SharedPtr<HeldRecord>, SharedPtr<BoundMethod>>;

/// A new object that holds `held` and inherits from `prototype`. Throws ScriptErrorSet.
JSObject* makeHostObject(Held held, JS::HandleObject prototype);

/// What the object holds; null when it is none of these.
const Held* heldIn(JSObject* object);

/// What it holds as a T, null when it is something else.
template <typename T>
SharedPtr<T> heldBy(JSObject* object) {
    const Held* const held = heldIn(object);
    const auto* const own = held ? std::get_if<SharedPtr<T>>(held) : nullptr;
    return own ? *own : SharedPtr<T>();
}

/// A data set for scripts: an array of its rows, each an object with the fields by name and by
/// column. Throws ScriptErrorSet.
JS::Value dataSetValue(const SharedPtr<TestDataSet>& set);
/// The data set of such an array, else null.
SharedPtr<TestDataSet> dataSetOf(JS::HandleObject array);

}  // namespace Tamrix::JavaScriptPlugin

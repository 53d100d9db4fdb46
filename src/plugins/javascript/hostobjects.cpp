#include "plugins/javascript/hostobjects.h"

#include <QImage>

#include "interpreter/generic/imageobjects.h"
#include "plugins/javascript/values.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

constexpr unsigned heldSlot = 0;
constexpr unsigned memorySlot = 1;

/// What an object has beside the engine's heap, so that many of them are collected in time. It does
/// not change.
std::size_t memoryOf(const Held& held) {
    const auto* const native = std::get_if<SharedPtr<NativeScriptObject>>(&held);
    const auto* const image =
        native ? dynamic_cast<const ImageScriptObject*>(native->get()) : nullptr;
    return image ? static_cast<std::size_t>(image->image.sizeInBytes()) : 0;
}

void finalize(JS::GCContext*, JSObject* object) {
    const JS::Value memory = JS::GetReservedSlot(object, memorySlot);
    if (memory.isNumber())
        JS::RemoveAssociatedMemory(object, static_cast<std::size_t>(memory.toNumber()),
                                   JS::MemoryUse::Embedding1);
    delete JS::GetMaybePtrFromReservedSlot<Held>(object, heldSlot);
}

constexpr JSClassOps operations = {nullptr, nullptr,  nullptr, nullptr, nullptr,
                                   nullptr, finalize, nullptr, nullptr, nullptr};
constexpr JSClass hostClass = {
    "Object",    JSCLASS_HAS_RESERVED_SLOTS(2) | JSCLASS_FOREGROUND_FINALIZE,
    &operations, nullptr,
    nullptr,     nullptr};

/// Where an array of rows has its data set.
const QString dataSetName = QStringLiteral("tamrix.dataSet");

JSObject* rowObject(const SharedPtr<TestDataSet>& set, const TestDataRecord* record) {
    const SharedPtr<HeldRecord> held(new HeldRecord(set, record));
    const ObjectRoot row(makeHostObject(held, ObjectRoot(rootPrototype())));
    const TestDataRecord* const header = set->header();
    for (int column = 0; column < held->width(); ++column) {
        const ValueRoot value(toJsText(record->valueAsString(column)));
        // The columns are there as well, and are not shown.
        defineProperty(row, QString::number(column), value, 0);
        const QString name = header ? header->valueAsString(column) : QString();
        if (!name.isEmpty())
            defineProperty(row, name, value);
    }
    return row;
}

}  // namespace

JSObject* makeHostObject(Held held, JS::HandleObject prototype) {
    const ObjectRoot object(
        checked(JS_NewObjectWithGivenProto(engineContext(), &hostClass, prototype)));
    const std::size_t memory = memoryOf(held);
    JS::SetReservedSlot(object, heldSlot, JS::PrivateValue(new Held(std::move(held))));
    if (memory > 0) {
        JS::SetReservedSlot(object, memorySlot, JS::NumberValue(static_cast<double>(memory)));
        JS::AddAssociatedMemory(object, memory, JS::MemoryUse::Embedding1);
    }
    return object;
}

const Held* heldIn(JSObject* object) {
    return JS::GetClass(object) == &hostClass
               ? JS::GetMaybePtrFromReservedSlot<Held>(object, heldSlot)
               : nullptr;
}

JS::Value dataSetValue(const SharedPtr<TestDataSet>& set) {
    ValueRoots rows;
    for (int index = 0; index < set->count(); ++index)
        rows.add(JS::ObjectValue(*rowObject(set, set->record(index))));
    const ObjectRoot array(newArray(rows));
    defineProperty(array, dataSetName, makeHostObject(set, ObjectRoot(rootPrototype())), 0);
    return JS::ObjectValue(*array);
}

SharedPtr<TestDataSet> dataSetOf(JS::HandleObject array) {
    const ObjectRoot held(builtinClass(array) == js::ESClass::Array
                              ? dataPropertyOf(array, toKey(dataSetName))
                              : JS::UndefinedValue());
    return held ? heldBy<TestDataSet>(held) : SharedPtr<TestDataSet>();
}

}  // namespace Tamrix::JavaScriptPlugin

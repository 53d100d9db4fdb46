#include "plugins/javascript/hostobjects.h"

#include <QImage>

#include "interpreter/generic/imageobjects.h"
#include "plugins/javascript/values.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

constexpr unsigned heldSlot = 0;

/// What an object has beside the engine's heap, so that many of them are collected in time. It does
/// not change.
std::size_t memoryOf(const Held& held) {
    const auto* const native = std::get_if<SharedPtr<NativeScriptObject>>(&held);
    const auto* const image =
        native ? dynamic_cast<const ImageScriptObject*>(native->get()) : nullptr;
    return image ? static_cast<std::size_t>(image->image.sizeInBytes()) : 0;
}

struct Holding {
    Held held;
    std::size_t memory;
};

Holding* holdingOf(JSObject* object) {
    return JS::GetMaybePtrFromReservedSlot<Holding>(object, heldSlot);
}

void finalize(JS::GCContext*, JSObject* object) {
    Holding* const holding = holdingOf(object);
    if (holding && holding->memory > 0)
        JS::RemoveAssociatedMemory(object, holding->memory, JS::MemoryUse::Embedding1);
    delete holding;
}

constexpr JSClassOps classOperations = {nullptr, nullptr,  nullptr, nullptr, nullptr,
                                        nullptr, finalize, nullptr, nullptr, nullptr};
constexpr JSClass hostClass = {
    "Object",         JSCLASS_HAS_RESERVED_SLOTS(1) | JSCLASS_FOREGROUND_FINALIZE,
    &classOperations, nullptr,
    nullptr,          nullptr};

/// The key under which an array of rows has its data set.
jsid dataSetKey() {
    const Root<JSString*> name(checked(JS_AtomizeString(engineContext(), "tamrix.dataSet")));
    return JS::PropertyKey::Symbol(checked(JS::GetSymbolFor(engineContext(), name)));
}

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
    JS::SetReservedSlot(object, heldSlot, JS::PrivateValue(new Holding{std::move(held), memory}));
    if (memory > 0)
        JS::AddAssociatedMemory(object, memory, JS::MemoryUse::Embedding1);
    return object;
}

const Held* heldIn(JSObject* object) {
    if (JS::GetClass(object) != &hostClass)
        return nullptr;
    const Holding* const holding = holdingOf(object);
    return holding ? &holding->held : nullptr;
}

JS::Value dataSetValue(const SharedPtr<TestDataSet>& set) {
    ValueRoots rows;
    for (int index = 0; index < set->count(); ++index)
        rows.add(JS::ObjectValue(*rowObject(set, set->record(index))));
    const ValueRoot array(newArray(rows));
    const ObjectRoot held(makeHostObject(set, ObjectRoot(rootPrototype())));
    checked(
        JS_DefinePropertyById(engineContext(), ObjectRoot(array), IdRoot(dataSetKey()), held, 0));
    return array;
}

SharedPtr<TestDataSet> dataSetOf(JS::HandleObject array) {
    const ObjectRoot held(builtinClass(array) == js::ESClass::Array
                              ? dataPropertyOf(array, dataSetKey())
                              : JS::UndefinedValue());
    return held ? heldBy<TestDataSet>(held) : SharedPtr<TestDataSet>();
}

}  // namespace Tamrix::JavaScriptPlugin

#include "plugins/python/valuetypes.h"

#include <structmember.h>

#include "plugins/python/conversion.h"

namespace Tamrix::PythonPlugin {

namespace {

template <typename Function>
void* slot(Function function) {
    return reinterpret_cast<void*>(function);
}

// tamrix.ApplicationContext

PyObject* contextRepr(PyObject* self) {
    return toPyString("<" + ApplicationContextHolder::unwrap(self)->displayString() + ">")
        .release();
}

PyObject* contextCompare(PyObject* self, PyObject* other, int operation) {
    if ((operation != Py_EQ && operation != Py_NE) || !ApplicationContextHolder::check(other))
        Py_RETURN_NOTIMPLEMENTED;
    const bool equal =
        ApplicationContextHolder::unwrap(self)->id == ApplicationContextHolder::unwrap(other)->id;
    return PyBool_FromLong(equal == (operation == Py_EQ));
}

Py_hash_t contextHash(PyObject* self) {
    return ApplicationContextHolder::unwrap(self)->id & 0x7fffffff;
}

// tamrix.DataSet

Py_ssize_t dataSetLength(PyObject* self) {
    return DataSetHolder::unwrap(self)->count();
}

PyObject* dataSetItem(PyObject* self, Py_ssize_t index) {
    const SharedPtr<TestDataSet> set = DataSetHolder::unwrap(self);
    if (index < 0 || index >= set->count()) {
        PyErr_SetString(PyExc_IndexError, "data set index out of range");
        return nullptr;
    }
    return RecordHolder::wrap(new HeldRecord(set, set->record(static_cast<int>(index)))).release();
}

PyObject* dataSetRepr(PyObject* self) {
    const SharedPtr<TestDataSet> set = DataSetHolder::unwrap(self);
    return toPyString(QString("<data set '%1' with %2 records>")
                          .arg(set->dataName(), QString::number(set->count())))
        .release();
}

// tamrix.Record

SharedPtr<HeldRecord> recordOf(PyObject* self) {
    return RecordHolder::unwrap(self);
}

Py_ssize_t recordLength(PyObject* self) {
    return recordOf(self)->width();
}

PyObject* recordItem(PyObject* self, Py_ssize_t index) {
    if (index < 0 || index >= recordLength(self)) {
        PyErr_SetString(PyExc_IndexError, "record index out of range");
        return nullptr;
    }
    const QString value = recordOf(self)->record->valueAsString(static_cast<int>(index));
    return toPyString(value).release();
}

/// By field name or column.
PyObject* recordSubscript(PyObject* self, PyObject* key) {
    if (!PyUnicode_Check(key)) {
        const Py_ssize_t index = PyNumber_AsSsize_t(key, PyExc_IndexError);
        if (index == -1 && PyErr_Occurred())
            return nullptr;
        return recordItem(self, index < 0 ? index + recordLength(self) : index);
    }
    const int column = recordOf(self)->set->fieldIndex(fromPyString(key));
    if (column < 0) {
        PyErr_SetObject(PyExc_KeyError, key);
        return nullptr;
    }
    return toPyString(recordOf(self)->record->valueAsString(column)).release();
}

// tamrix.Location

PyTypeObject* s_locationType = nullptr;

bool addType(PyObject* module, PyTypeObject* type) {
    return type && PyModule_AddType(module, type) == 0;
}

PyTypeObject* makeLocationType() {
    static PyStructSequence_Field s_fields[] = {{"fileName", "Path of the script file"},
                                                {"line", "Line, counted from 1"},
                                                {nullptr, nullptr}};
    static PyStructSequence_Desc s_description{"tamrix.Location", "A position in a script",
                                               s_fields, 2};
    return PyStructSequence_NewType(&s_description);
}

}  // namespace

bool addValueTypes(PyObject* module) {
    const PyType_Slot contextSlots[] = {{Py_tp_repr, slot(contextRepr)},
                                        {Py_tp_richcompare, slot(contextCompare)},
                                        {Py_tp_hash, slot(contextHash)},
                                        {Py_tp_doc, const_cast<char*>("A running application")},
                                        {0, nullptr}};
    const PyType_Slot dataSetSlots[] = {
        {Py_tp_repr, slot(dataSetRepr)},
        {Py_sq_length, slot(dataSetLength)},
        {Py_sq_item, slot(dataSetItem)},
        {Py_tp_doc, const_cast<char*>("A table of test data: a sequence of records")},
        {0, nullptr}};
    const PyType_Slot recordSlots[] = {
        {Py_sq_length, slot(recordLength)},
        {Py_sq_item, slot(recordItem)},
        {Py_mp_length, slot(recordLength)},
        {Py_mp_subscript, slot(recordSubscript)},
        {Py_tp_doc,
         const_cast<char*>("One row of a data set: record[\"field\"] or record[column]")},
        {0, nullptr}};
    if (!s_locationType)
        s_locationType = makeLocationType();
    return addType(module,
                   ApplicationContextHolder::makeType("tamrix.ApplicationContext", contextSlots)) &&
           addType(module, DataSetHolder::makeType("tamrix.DataSet", dataSetSlots)) &&
           addType(module, RecordHolder::makeType("tamrix.Record", recordSlots)) &&
           addType(module, s_locationType);
}

PyRef wrapLocation(const ScriptLocation& location) {
    PyRef tuple = PyRef::steal(PyStructSequence_New(s_locationType));
    PyRef file = toPyString(location.fileName);
    PyRef line = PyRef::steal(PyLong_FromLong(location.line));
    if (!tuple || !file || !line)
        return {};
    PyStructSequence_SET_ITEM(tuple.get(), 0, file.release());
    PyStructSequence_SET_ITEM(tuple.get(), 1, line.release());
    return tuple;
}

}  // namespace Tamrix::PythonPlugin

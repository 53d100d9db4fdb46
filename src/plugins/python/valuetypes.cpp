#include "plugins/python/valuetypes.h"

#include "plugins/python/conversion.h"

namespace Tamrix::PythonPlugin {

namespace {

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

}  // namespace

void addValueTypes(PyObject* module) {
    const PyType_Slot contextSlots[] = {{Py_tp_doc, const_cast<char*>("A running application")},
                                        {0, nullptr}};
    const PyType_Slot dataSetSlots[] = {
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
    ApplicationContextHolder::addType(module, "tamrix.ApplicationContext", contextSlots);
    DataSetHolder::addType(module, "tamrix.DataSet", dataSetSlots);
    RecordHolder::addType(module, "tamrix.Record", recordSlots);
}

}  // namespace Tamrix::PythonPlugin

#pragma once

#include <QString>

#include "base/export.h"

namespace Tamrix {

class ScriptContext;

// The script functions testData.NAME(): tables of the suite, and files beside the application.

/// The records of a table, found as a file of the suite.
TAMRIX_EXPORT void testDataDataSet(ScriptContext* context);
/// The records of a sheet of a spreadsheet.
TAMRIX_EXPORT void testDataDataSetExcel(ScriptContext* context);
/// A value of a record, by the field's name or column.
TAMRIX_EXPORT void testDataField(ScriptContext* context);
/// The names of a record's fields.
TAMRIX_EXPORT void testDataFieldNames(ScriptContext* context);
/// Makes the folder for test data of the test case or the suite; gives the path of a file in it.
TAMRIX_EXPORT void testDataCreate(ScriptContext* context);

/// Whether the application has this file.
TAMRIX_EXPORT void testDataExists(ScriptContext* context);
/// Removes a file of the application.
TAMRIX_EXPORT void testDataRemove(ScriptContext* context);
/// Stores a file of the application under its name in the working folder.
TAMRIX_EXPORT void testDataGet(ScriptContext* context);
/// Copies a file of the suite to the application; gives its path there.
TAMRIX_EXPORT void testDataPut(ScriptContext* context);

}  // namespace Tamrix

#include "interpreter/generic/testdatafunctions.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <optional>

#include "base/bytetext.h"
#include "base/filewriting.h"
#include "base/pathbelow.h"
#include "interpreter/bridge/scriptcontext.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectclass.h"
#include "platform/objectmodel/objectmodel.h"
#include "shared/resources/testresource.h"
#include "shared/testdata/testdata.h"
#include "shared/testdata/testdataset.h"

namespace Tamrix {

namespace {

/// Whether the call has `minimum` to `maximum` arguments, all of them strings; else the error is
/// set.
bool hasStrings(ScriptContext* context, int minimum, int maximum, const char* error) {
    const int count = context->argumentCount();
    bool isGood = count >= minimum && count <= maximum;
    for (int index = 0; isGood && index < count; ++index)
        isGood = context->argument(index)->isString();
    if (!isGood)
        context->setError(error);
    return isGood;
}

/// The path of a file of the suite; empty with the error set.
QString findTestData(ScriptContext* context, const QString& name) {
    const QString path = findTestSuiteFile(name, QStringLiteral("testdata"));
    if (path.isEmpty())
        context->setError("File '" + name + "' couldn't be found.");
    return path;
}

/// Whether the name is that of a file below the folder; else the error is set.
bool staysBelow(ScriptContext* context, const QString& folder, const QString& name) {
    switch (faultOfPathBelow(folder, name)) {
        case PathFault::None:
            return true;
        case PathFault::NoFile:
            context->setError("'" + name + "' is no name of a file");
            break;
        case PathFault::Absolute:
            context->setError("The path '" + name + "' is absolute: files can be made below '" +
                              folder + "' only");
            break;
        case PathFault::LeadsOut:
            context->setError("The path '" + name + "' leads out of the folder '" + folder + "'");
            break;
    }
    return false;
}

/// The result of a function that reads the table of a file of the suite.
template <typename Read>
void giveDataSet(ScriptContext* context, Read read) {
    const QString path = findTestData(context, context->argument(0)->toString());
    if (path.isEmpty())
        return;
    // A loop over the empty table of a file that can't be read would pass.
    TestDataSet* const set = TestData::checkReadable(path) ? read(path) : nullptr;
    if (set)
        context->setTestDataSetResult(set);
    else
        context->setError("Data set '" + path + "' couldn't be parsed.");
}

/// Calls a function of the application.
Outcome<SharedPtr<Object>> callApplication(const QString& name, const QStringList& arguments) {
    ObjectModel* const model = Inspector::self()->model();
    if (!model)
        return Inspector::noApplication();
    const Outcome<const Class*> globalClass = model->globalClass();
    if (!globalClass)
        return fail(globalClass.error());
    if (!*globalClass || (*globalClass)->methodsByName(name).isEmpty())
        return fail(FailureKind::Refused, "The application has no function '" + name + "'");
    ObjectList objects;
    for (const QString& argument : arguments)
        objects.push_back(Inspector::self()->createObject(argument));
    return model->invokeGlobal(name, objects);
}

/// The value that a function of the application gives back; nothing with the error set.
std::optional<QVariant> askApplication(ScriptContext* context, const QString& name,
                                       const QStringList& arguments) {
    const Outcome<SharedPtr<Object>> result = callApplication(name, arguments);
    if (result)
        return (*result)->toVariant();
    context->setError(result.error().text);
    return std::nullopt;
}

/// The result of a function of the application that takes a file's name and gives a boolean.
void giveBool(ScriptContext* context, const QString& name, const char* error) {
    if (!hasStrings(context, 1, 1, error))
        return;
    const QString file = context->argument(0)->toString();
    if (const auto value = askApplication(context, name, {file}))
        context->setBoolResult(value->toBool());
}

/// Sends a file of the suite to the application, and gives its path there. False with the error
/// set.
bool copyTestData(ScriptContext* context, const QString& file, QString* out) {
    const QString path = findTestData(context, file);
    if (path.isEmpty())
        return false;
    QFile source(path);
    const bool isOpen = source.open(QIODevice::ReadOnly);
    const QByteArray bytes =
        isOpen && source.size() <= mostTransportBytes ? source.readAll() : QByteArray();
    if (!isOpen || source.error() != QFile::NoError) {
        context->setError(
            QStringLiteral("Could not open file %1: %2").arg(path, source.errorString()));
        return false;
    }
    if (source.size() > mostTransportBytes || bytes.size() > mostTransportBytes) {
        context->setError(QStringLiteral("Could not send file %1: it is larger than %2 bytes")
                              .arg(path, QString::number(mostTransportBytes)));
        return false;
    }
    const auto value =
        askApplication(context, QStringLiteral("testDataPut"), {file, encodedQString(bytes)});
    if (value)
        *out = value->toString();
    return value.has_value();
}

/// Stores the bytes that the application sent; an error text on failure.
QString storeFetched(const QString& file, const QString& encoded) {
    QByteArray bytes;
    if (!decodedQByteArray(encoded, &bytes))
        return QStringLiteral("the application sent no bytes");
    QSaveFile target(file);
    if (!TestData::checkAndMakeDir(QFileInfo(file).path(), true) ||
        !target.open(QIODevice::WriteOnly))
        return target.errorString();
    QString error;
    if (!writeAll(&target, bytes, &error))
        return error;
    return target.commit() ? QString() : target.errorString();
}

}  // namespace

void testDataDataSet(ScriptContext* context) {
    if (!hasStrings(context, 1, 1, "dataset() requires a name argument"))
        return;
    giveDataSet(context, [](const QString& path) { return TestDataSet::createTestDataSet(path); });
}

void testDataDataSetExcel(ScriptContext* context) {
    if (!hasStrings(context, 1, 2,
                    "datasetExcel() requires either a filename or a filename and a sheet name"))
        return;
    const QString sheet =
        context->argumentCount() > 1 ? context->argument(1)->toString() : QString();
    giveDataSet(context, [&](const QString& path) {
        return TestDataSet::createTestDataSetExcel(path, sheet);
    });
}

void testDataField(ScriptContext* context) {
    if (context->argumentCount() != 2) {
        context->setError("field() expects two arguments");
        return;
    }
    const TestDataRecord* const record = context->argument(0)->toTestDataRecord();
    if (!record) {
        context->setError("Invalid test data record");
        return;
    }
    const SharedPtr<ScriptArgument> field = context->argument(1);
    const TestDataSet& set = *record->dataSet();
    // Where a text may be a number as well, a field of that name goes first.
    int column = field->isString() ? set.fieldIndex(field->toString()) : -1;
    if (column >= 0) {
        context->setStringResult(record->valueAsString(column));
        return;
    }
    if (field->isInteger()) {
        const long long number = field->toInt();
        const int width = set.header() ? set.header()->count() : 0;
        if (number < 0 || number >= width) {
            context->setError(QStringLiteral("Invalid field index %1").arg(number));
            return;
        }
        column = static_cast<int>(number);
    } else if (field->isString()) {
        context->setError("Invalid field: " + field->toString());
        return;
    } else {
        context->setError("Field argument must be of a string or a number");
        return;
    }
    context->setStringResult(record->valueAsString(column));
}

void testDataFieldNames(ScriptContext* context) {
    if (context->argumentCount() != 1) {
        context->setError("fieldNames() expects a recordset argument");
        return;
    }
    const TestDataRecord* const record = context->argument(0)->toTestDataRecord();
    if (!record) {
        context->setError("Invalid test data record");
        return;
    }
    QStringList names;
    const TestDataRecord* const header = record->dataSet()->header();
    for (int column = 0; header && column < header->count(); ++column)
        names.append(header->valueAsString(column));
    context->setListResult(names);
}

void testDataCreate(ScriptContext* context) {
    if (!hasStrings(context, 2, 2, "create() takes two string arguments"))
        return;
    const QString where = context->argument(0)->toString();
    QString directory;
    if (where == QLatin1String("local")) {
        directory = QStringLiteral("testdata");
    } else if (where == QLatin1String("shared")) {
        directory = QStringLiteral("../shared/testdata");
    } else {
        context->setError("First argument of create() must be 'shared' or 'local'");
        return;
    }
    if (!TestData::checkAndMakeDir(directory, true)) {
        context->setError("Could not make the directory '" + directory + "'");
        return;
    }
    const QString file = context->argument(1)->toString();
    if (staysBelow(context, directory, file))
        context->setStringResult(directory + '/' + file);
}

void testDataExists(ScriptContext* context) {
    giveBool(context, QStringLiteral("testDataExists"), "exists() takes a string argument");
}

void testDataRemove(ScriptContext* context) {
    giveBool(context, QStringLiteral("testDataRemove"), "remove() takes a string argument");
}

void testDataGet(ScriptContext* context) {
    if (!hasStrings(context, 1, 1, "get() takes a string argument"))
        return;
    const QString file = context->argument(0)->toString();
    // The application knows its own folder alone.
    if (!staysBelow(context, QStringLiteral("."), file))
        return;
    const Outcome<SharedPtr<Object>> result =
        callApplication(QStringLiteral("testDataGet"), {file});
    const QString problem =
        result ? storeFetched(file, (*result)->toVariant().toString()) : result.error().text;
    if (problem.isEmpty())
        return;
    // The error has no room for the reason.
    qWarning("%s: %s", file.toLocal8Bit().constData(), problem.toLocal8Bit().constData());
    context->setError("Failed to fetch file '" + file + "'");
}

void testDataPut(ScriptContext* context) {
    if (!hasStrings(context, 1, 1, "put() takes a string argument"))
        return;
    QString path;
    if (copyTestData(context, context->argument(0)->toString(), &path))
        context->setStringResult(path);
}

}  // namespace Tamrix

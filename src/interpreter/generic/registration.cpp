// The names under which scripts reach the library. Every name of the interface has its row; a row
// without a function is not registered, so that a script is told that there is no such name.

#include "interpreter/bdd/runfeaturefile.h"
#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/librarynames.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/bridge/testsettingstype.h"
#include "interpreter/generic/applicationfunctions.h"
#include "interpreter/generic/comparisonfunctions.h"
#include "interpreter/generic/imageobjects.h"
#include "interpreter/generic/imagesearch.h"
#include "interpreter/generic/inputfunctions.h"
#include "interpreter/generic/objectfunctions.h"
#include "interpreter/generic/objectmapfunctions.h"
#include "interpreter/generic/ocrfunctions.h"
#include "interpreter/generic/remotefunctions.h"
#include "interpreter/generic/resourcefunctions.h"
#include "interpreter/generic/screenshotfunctions.h"
#include "interpreter/generic/tamrixinfo.h"
#include "interpreter/generic/testdatafunctions.h"
#include "interpreter/generic/testfunctions.h"
#include "interpreter/generic/testinteraction.h"
#include "interpreter/generic/verificationpoints.h"
#include "interpreter/generic/videocapture.h"
#include "wire/applicationfunctions.h"

namespace Tamrix {

namespace {

/// One function of the tables. `required` and `optional` are parameter names, separated by blanks.
struct FunctionRow {
    const char* name;
    ScriptContext::Function function = nullptr;
    const char* required = "";
    const char* optional = "";
    const char* description = "";
};

/// One function of the native interface.
struct NativeRow {
    const char* name;
    bool (*function)(ScriptContext*) = nullptr;
    const char* required = "";
    const char* optional = "";
    const char* description = "";
};

const FunctionRow globalFunctions[] = {
    {"waitFor", waitFor, "condition", "timeout",
     "Waits until an expression or a callable is true; false when the time, in milliseconds, is "
     "over before"},
    {"waitForObject", waitForObject, "objectOrName", "timeout",
     "Waits until the object is there and ready; returns it"},
    {"waitForObjectExists", waitForObjectExists, "name", "timeout",
     "Waits until the object exists, ready or not; returns it"},
    {"waitForObjectItem", waitForObjectItem, "objectOrName itemOrRow", "column timeout",
     "Waits for an item of a view, by its text or by row and column; returns it"},
    {"findObject", findObject, "name", "", "Returns the object, without waiting"},
    {"findAllObjects", findAllObjects, "name", "", "A list of all objects that the name fits"},
    {"mousePress", mousePress, "", "objectOrName x y button modifiers", "Presses a mouse button"},
    {"mouseRelease", mouseRelease, "", "objectOrName x y button modifiers",
     "Releases a mouse button"},
    {"mouseMove", mouseMove, "", "objectOrName x y", "Moves the mouse"},
    {"readGesture", readGesture, "fileName", "", "A recorded gesture from a file"},
    {"sendEvent", sendEvent, "event objectOrName", "",
     "Sends an event to an object; further arguments are the event's"},
    {"cast", castObject, "object typeName", "",
     "The object as one of another type, null when it is none"},
    {"source", sourceFile, "fileName", "", "Runs another script file as if it stood here"},
    {"installEventHandler", installEventHandler, "", "objectOrType event callback",
     "Calls a callback when an event happens: installEventHandler([objectOrType,] event, "
     "callback)"},
    {"uninstallEventHandler", uninstallEventHandler, "", "objectOrType event callback",
     "Takes back installEventHandler with the same arguments"},
    {"runFeatureFile", runFeatureFile, "fileName", "",
     "Runs the scenarios of a feature file with the step definitions of the scripts"},
    {"_tamrix_connect_to_remote_system", RemoteSystemApi::connectToRemoteSystem, "", "host port",
     "Connects to a machine, or to the default one; returns a handle"},
    {"_tamrix_close_remote_system_connection", RemoteSystemApi::closeRemoteSystemConnection,
     "handle", "", "Ends a connection"},
    {"_tamrix_remote_get_environment_variable", RemoteSystemApi::getEnvironmentVariable,
     "handle envvarname", "", "The value of an environment variable"},
    {"_tamrix_remote_get_os_name", RemoteSystemApi::getOSName, "handle", "",
     "The operating system of the machine"},
    {"_tamrix_remote_execute_command", RemoteSystemApi::executeCommand,
     "handle command cwd env options", "",
     "Runs a program to its end; returns its exit code and output"},
    {"_tamrix_remote_get_directory_content", RemoteSystemApi::getRemoteDirectoryContent,
     "handle remotePath", "", "The names of all that is in a folder"},
    {"_tamrix_remote_get_path_property", RemoteSystemApi::getRemotePathProperty,
     "handle remotePath propertyName", "", "What is known of a path"},
    {"_tamrix_remote_path_exists", RemoteSystemApi::remotePathExists, "handle remotePath", "",
     "Whether there is something under the path"},
    {"_tamrix_remote_rename_path", RemoteSystemApi::remoteRenamePath,
     "handle oldRemotePath newRemotePath", "", "Renames a file or folder"},
    {"_tamrix_remote_create_path", RemoteSystemApi::remoteCreatePath, "handle remotePath",
     "recursive", "Makes a folder"},
    {"_tamrix_remote_delete_path", RemoteSystemApi::remoteDeletePath, "handle remotePath",
     "recursive", "Removes a file or folder"},
    {"_tamrix_remote_create_file", RemoteSystemApi::remoteCreateFile,
     "handle remotePath content encoding", "", "Writes a text to a file"},
    {"_tamrix_remote_delete_file", RemoteSystemApi::remoteDeleteFile, "handle remotePath", "",
     "Removes a file"},
    {"_tamrix_remote_copy_path", RemoteSystemApi::remoteCopyPath,
     "handle srcRemotePath dstRemotePath", "", "Copies a file or folder on the machine"},
    {"_tamrix_remote_upload_file", RemoteSystemApi::remoteUploadFile, "handle localPath remotePath",
     "", "Copies a file to the machine"},
    {"_tamrix_remote_download_file", RemoteSystemApi::remoteDownloadFile,
     "handle remotePath localPath", "", "Copies a file from the machine"},
    {"startApplication", startApplication, "program", "host port timeout",
     "Starts an application; returns its context"},
    {"attachToApplication", attachToApplication, "name", "host port timeout",
     "Connects to a running application; returns its context"},
    {"waitForApplicationLaunch", waitForApplicationLaunch, "", "timeout",
     "Waits until an application connects; returns its context"},
    {"setApplicationContext", setApplicationContext, "", "context",
     "Makes an application, or the default one, the current one"},
    {"defaultApplicationContext", defaultApplicationContext, "", "",
     "The context of the first application"},
    {"currentApplicationContext", currentApplicationContext, "", "",
     "The context of the application that functions work on"},
    {"applicationContextList", applicationContextList, "", "", "The contexts of all applications"},
    {"applicationContext", applicationContext, "name", "",
     "The context of the application of this name, null when there is none"},
};

const FunctionRow objectFunctions[] = {
    {"exists", objectExists, "name", "", "Whether there is such an object now"},
    {"children", objectChildren, "object", "", "A list of the object's children"},
    {"globalBounds", objectGlobalBounds, "object", "", "The object's rectangle on the screen"},
    {"grabScreenshot", objectGrabScreenshot, "object", "options",
     "A picture of the object as it is on the screen"},
    {"parent", objectParent, "object", "",
     "The object that this one is in, null for one at the top"},
    {"topLevelObjects", objectTopLevelObjects, "", "", "A list of the objects that have no parent"},
    {"properties", objectProperties, "object", "", "A map of the object's properties"},
    {"objectName", objectObjectName, "object", "", "The object's name in the application"},
    {"isPointer", objectIsPointer, "object", "", "Whether it is pointed to"},
    {"isReference", objectIsReference, "object", "", "Whether it is a reference"},
    {"isValue", objectIsValue, "object", "", "Whether it is a value"},
    {"isArray", objectIsArray, "object", "", "Whether it is an array"},
    {"queryInterface", objectQueryInterface, "object name", "",
     "The object's interface of this name"},
    {"convertTo", objectConvertTo, "object typeName", "", "The object as one of another type"},
    {"createNull", objectCreateNull, "type", "", "A null object of the type"},
};

const FunctionRow testFunctions[] = {
    {"pass", testPass, "message", "detail", "Adds a passed result; returns true"},
    {"xpass", testXPass, "message", "detail", "Adds an unexpected pass; returns false"},
    {"fail", testFail, "message", "detail", "Adds a failed result; returns false"},
    {"breakpoint", testBreakpoint, "", "", "Stops in the debugger when there is one"},
    {"xfail", testXFail, "message", "detail", "Adds an expected failure; returns false"},
    {"fatal", testFatal, "message", "detail", "Adds a fatal result; returns false"},
    {"log", testLog, "message", "detail", "Adds a line to the results; returns true"},
    {"warning", testWarning, "message", "detail", "Adds a warning; returns false"},
    {"skip", testSkip, "message", "detail", "Ends the test case as skipped"},
    {"verify", testVerify, "condition", "comment",
     "Passes when the condition is true; returns its truth"},
    {"xverify", testXVerify, "condition", "comment",
     "As verify, for a condition that is expected to be false"},
    {"compare", testCompare, "value1 value2", "comment",
     "Passes when both values are equal; returns whether they are"},
    {"xcompare", testXCompare, "value1 value2", "comment",
     "As compare, for values that are expected to differ"},
    {"compareTextFiles", testCompareTextFiles, "expected actual", "options",
     "Passes when both text files have the same lines; returns whether they do"},
    {"compareXMLFiles", testCompareXMLFiles, "expected actual", "options",
     "Passes when both XML files are the same document; returns whether they are"},
    {"compareJSONFiles", testCompareJSONFiles, "expected actual", "",
     "Passes when both JSON files hold the same value; returns whether they do"},
    {"vp", testVP, "name", "messageOrRecord",
     "Passes when the application shows what a verification point of the suite expects; returns "
     "whether it does"},
    {"xvp", testXVP, "name", "messageOrRecord",
     "As vp, for a verification point that is expected to differ"},
    {"vpWithObject", testVPWithObject, "name objectOrName", "",
     "As vp, with this object in place of the one that the verification point names"},
    {"exception", testException, "code", "comment",
     "Passes when the code raises an exception; returns whether it did"},
    {"resultCount", testResultCount, "category", "",
     "Number of results of a category since the test case started: passes, fails, xpasses, "
     "xfails, errors, fatals, warnings, skips, logs, or tests for all verdicts"},
    {"stackTrace", testStackTrace, "", "start maximum",
     "The positions of the running calls, innermost first"},
    {"fixateResultContext", testFixateResultContext, "", "frames",
     "Lets results carry the position of the caller, that many frames up (1 without argument), "
     "until restoreResultContext is called"},
    {"restoreResultContext", testRestoreResultContext, "", "", "Ends the last fixateResultContext"},
    {"startSection", testStartSection, "title", "description", "Starts a section of the results"},
    {"endSection", testEndSection, "", "", "Ends the innermost section"},
    {"imageNotPresent", testImageNotPresent, "image", "options region",
     "Passes as soon as the image is not on the screen; returns whether it went in time"},
    {"imagePresent", testImagePresent, "image", "options region",
     "Passes as soon as the image is on the screen; returns whether it came in time"},
    {"ocrTextNotPresent", testOcrTextNotPresent, "text", "options region",
     "Passes as soon as the text can't be read on the screen; returns whether that was in time"},
    {"ocrTextPresent", testOcrTextPresent, "text", "options region",
     "Passes as soon as the text can be read on the screen; returns whether that was in time"},
    {"attachFile", testAttachFile, "path", "message", "Copies a file to the results"},
    {"attachDesktopScreenshot", testAttachDesktopScreenshot, "message", "",
     "Adds a picture of the desktop to the results"},
    {"attachImage", testAttachImage, "image", "message", "Adds a picture to the results"},
    {"startVideoCapture", testStartVideoCapture, "", "message",
     "Starts a video of the current application's display; returns its VideoCapture"},
    {"stopVideoCapture", testStopVideoCapture, "", "message",
     "Ends the video of the current application"},
    {"expect", testExpect, "nameOrObject properties", "timeout comment",
     "Passes as soon as the object is there and has all the properties; returns whether it had "
     "them in time"},
};

const FunctionRow objectMapFunctions[] = {
    {"add", objectMapAdd, "object", "",
     "Writes a new name for the object to the map's file when it has none; returns its symbolic "
     "name"},
    {"symbolicName", objectMapSymbolicName, "nameOrObject", "",
     "The symbolic name of a real name or an object, empty without one"},
    {"realName", objectMapRealName, "nameOrObject", "",
     "The real name that a name stands for, or that of an object"},
    {"symbolicNames", objectMapSymbolicNames, "", "", "A list of all symbolic names"},
    {"load", objectMapLoad, "file", "",
     "Takes the map of names in a file of the suite in place of the one in use"},
};

const FunctionRow testDataFunctions[] = {
    {"dataset", testDataDataSet, "name", "",
     "The records of a table of the suite: a .tsv, .csv, .xls or .xlsx file"},
    {"datasetExcel", testDataDataSetExcel, "name", "sheet",
     "The records of a sheet of a spreadsheet, the first one unless named"},
    {"field", testDataField, "record field", "",
     "A value of a record, by the field's name or column"},
    {"fieldNames", testDataFieldNames, "record", "", "A list of the names of a record's fields"},
    {"put", testDataPut, "file", "",
     "Copies a test data file to the application; returns its path there"},
    {"get", testDataGet, "file", "",
     "Copies a file that put() or the application stored to the working folder"},
    {"exists", testDataExists, "file", "", "Whether the application has the file"},
    {"remove", testDataRemove, "file", "",
     "Removes a file of the application; returns whether there was one"},
    {"create", testDataCreate, "where file", "",
     "A path for a new test data file, 'local' to the test case or 'shared' by the suite"},
};

const FunctionRow infoFunctions[] = {
    {"testCase", infoTestCase, "", "", "Folder of the running test case"},
    {"testCaseName", infoTestCaseName, "", "", "Name of the running test case"},
    {"testSuiteName", infoTestSuiteName, "", "", "Name of the running test suite"},
    {"version_str", infoVersionString, "", "", "The version as text"},
    {"version", infoVersion, "", "",
     "The version as a number: major, minor and patch in the upper three bytes"},
    {"major", infoMajor, "", "", "The first number of the version"},
    {"minor", infoMinor, "", "", "The second number of the version"},
    {"patch", infoPatch, "", "", "The third number of the version"},
    {"settingsGroup", infoSettingsGroup, "", "", "The settings group of the run"},
    {"defaultDevice", infoDefaultDevice, "", "", "The default device of the run"},
    {"resultDir", infoResultDir, "", "", "Folder for the results of the run"},
};

/// Called with the context as first argument.
const FunctionRow applicationContextFunctions[] = {
    {"name", applicationName, "context", "", "The application's name"},
    {"commandLine", applicationCommandLine, "context", "",
     "The command line that it was started with"},
    {"pid", applicationPid, "context", "", "The process id"},
    {"cwd", applicationCwd, "context", "", "The working folder"},
    {"isRunning", applicationIsRunning, "context", "", "Whether it runs"},
    {"startTime", applicationStartTime, "context", "", "When it was started"},
    {"usedMemory", applicationUsedMemory, "context", "", "Memory in use, in bytes"},
    {"totalTime", applicationTotalTime, "context", "", "CPU time used, in milliseconds"},
    {"isFrozen", applicationIsFrozen, "context timeout", "",
     "Whether it answers nothing within the time-out in seconds"},
    {"readStdout", applicationReadStdout, "context", "", "What it wrote to its standard output"},
    {"readStderr", applicationReadStderr, "context", "", "What it wrote to its standard error"},
    {"osName", applicationOsName, "context", "", "The operating system that it runs on"},
    {"toolkitVersion", applicationToolkitVersion, "context", "",
     "What it is made with, as \"Qt 6.4.2\""},
    {"environmentVariable", applicationEnvironmentVariable, "context name", "",
     "The value of a variable in its environment"},
    {"host", applicationHost, "context", "", "The machine that it runs on"},
    {"port", applicationPort, "context", "", "The port of its connection"},
    {"expectExit", applicationExpectExit, "context", "",
     "From now on it may end, in whatever way, without that being reported"},
    {"detach", applicationDetach, "context", "", "Drops the connection; the application runs on"},
};

// The repeated description of startCAN and connectTo is meant.
const NativeRow nativeFunctions[] = {
    {"typeName", typeName, "object", "", "Returns the name of the type of this object"},
    {"snooze", snooze, "secs", "", "Sleep for the specified number of seconds"},
    {"isNull", isNull, "object", "", "Check if the argument is a null pointer"},
    {"findFile", findFile, "type name", "", "Finds a script or testdata file"},
    {"keyPress", keyPress, "key", "", "Sets a key in pressed state"},
    {"keyRelease", keyRelease, "key", "", "Sets a key in released state"},
    {"startFMI", startFMI, "", "host port timeoutms", "Starts a new FMI context"},
    {"startCAN", startCAN, "", "options host port timeoutms", "Starts a new FMI context"},
    {"connectTo", connectTo, "server", "tamrixhost tamrixport timeoutms",
     "Starts a new FMI context"},
    {"saveDesktopScreenshot", saveDesktopScreenshot, "filename", "format",
     "Saves a desktop screenshot to a file"},
    {"saveObjectSnapshot", saveObjectSnapshot, "object filename", "",
     "Saves an object screenshot to a file"},
    {"highlightObject", highlightObject, "object", "timeoutms block",
     "Highlights the specified object"},
    {"createVisualVP", createVisualVP, "object VPname", "",
     "Creates a visual verification point for an object"},
    {"findImage", findImage, "image", "options region",
     "Returns a position of the specified image"},
    {"waitForImage", waitForImage, "image", "options region",
     "Returns a position of the specified image"},
    {"getOcrText", getOcrText, "", "options region", "Returns all text found by OCR"},
    {"findOcrText", findOcrText, "text", "options region",
     "Searches for the specified text in OCR results"},
    {"waitForOcrText", waitForOcrText, "text", "options region",
     "Waits for the specified text in OCR results"},
    {"findAllOcrText", findAllOcrText, "text", "options region",
     "Finds locations of all instances of the specified text in OCR results"},
    {"getAllOcrText", getAllOcrText, "", "options region",
     "Returns all word locations found by OCR"},
};

/// Registered last, behind the native classes.
const NativeRow grabDesktopScreenshotRow = {
    "grabDesktopScreenshot", grabDesktopScreenshot, "", "",
    "Grabs the desktop screenshot and returns it as a ScriptImage object"};

QStringList parameters(const char* names) {
    return QString(names).split(' ', Qt::SkipEmptyParts);
}

ScriptContext::FunctionDescription describe(const FunctionRow& row) {
    return {parameters(row.required), parameters(row.optional), row.description};
}

template <std::size_t size>
void addStaticMembers(ScriptContext* context, const char* className,
                      const FunctionRow (&rows)[size]) {
    for (const FunctionRow& row : rows) {
        if (!row.function)
            continue;
        ScriptContext::describeFunction(QString(className) + "::" + row.name, describe(row));
        context->addStaticMemberFunction(className, row.name, row.function);
    }
}

void addNative(Interpreter* interpreter, const NativeRow& row) {
    if (row.function)
        interpreter->addNativeFunction(row.name, row.function, parameters(row.required),
                                       parameters(row.optional), row.description);
}

template <typename NativeClass>
void addNativeClass(Interpreter* interpreter, const QString& name) {
    interpreter->addNativeType(name, NativeClass::staticTypeId(), NativeClass::type());
}

/// The same under a name that the debugger's views of variables leave out.
template <typename NativeClass>
void addHiddenNativeClass(Interpreter* interpreter, const QString& name) {
    addNativeClass<NativeClass>(interpreter, name);
    interpreter->addSelfDefinedVariableName(name);
}

template <typename Rows>
void appendNames(QStringList& names, const Rows& rows) {
    for (const auto& row : rows)
        names.append(QString::fromLatin1(row.name));
}

}  // namespace

QStringList libraryNames() {
    // Namespaces, and the classes of initNativeAPI().
    QStringList names{"Image",
                      "OCRSpaceTestSettings",
                      "Screenshot",
                      "TesseractTestSettings",
                      "VideoCapture",
                      "object",
                      "objectMap",
                      "tamrixinfo",
                      "test",
                      "testData",
                      "testInteraction",
                      "testSettings",
                      grabDesktopScreenshotRow.name};
    appendNames(names, globalFunctions);
    appendNames(names, nativeFunctions);
    appendNames(names, Wire::applicationFunctions);
    names.sort();
    return names;
}

void ScriptContext::initFunctions() {
    for (const FunctionRow& row : globalFunctions) {
        if (!row.function)
            continue;
        describeFunction(row.name, describe(row));
        addGlobalFunction(row.name, row.function);
    }
    addStaticMembers(this, "object", objectFunctions);
    addStaticMembers(this, "test", testFunctions);
    addStaticMembers(this, "objectMap", objectMapFunctions);
    addStaticMembers(this, "testData", testDataFunctions);
    addStaticMembers(this, "tamrixinfo", infoFunctions);
    for (const FunctionRow& row : applicationContextFunctions) {
        if (!row.function)
            continue;
        describeFunction(QString("ApplicationContext::") + row.name, describe(row));
        addMemberFunction("ApplicationContext", row.name, row.function);
    }
    TestInteraction::initFunctions(this);
}

void Interpreter::initNativeAPI() {
    for (const NativeRow& row : nativeFunctions)
        addNative(this, row);
    addHiddenNativeClass<TestSettingsType>(this, "testSettings");
    addNativeClass<ImageScriptObject>(this, "Image");
    addNativeClass<ScreenshotScriptObject>(this, "Screenshot");
    addNativeClass<VideoCaptureScriptObject>(this, "VideoCapture");
    // What testSettings holds; scripts get the objects from it.
    addHiddenNativeClass<TesseractTestSettings>(this, "TesseractTestSettings");
    addHiddenNativeClass<OCRSpaceTestSettings>(this, "OCRSpaceTestSettings");
    addNative(this, grabDesktopScreenshotRow);
}

}  // namespace Tamrix

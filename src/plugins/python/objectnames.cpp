#include "plugins/python/objectnames.h"

#include <QStandardPaths>
#include <algorithm>

#include "base/utf8file.h"
#include "interpreter/language/literals.h"
#include "plugins/python/conversion.h"
#include "plugins/python/prelude.h"
#include "plugins/python/pythonargument.h"
#include "plugins/python/pythoninterpreter.h"

namespace Tamrix::PythonPlugin {

namespace {

/// Keywords, and the functions and constants that Python defines: no names of objects.
constexpr const char* reservedWords =
    "False None True abs aiter all and anext any as ascii assert async await bin bool break "
    "breakpoint bytearray bytes callable case chr class classmethod compile complex continue "
    "def del delattr dict dir divmod elif else enumerate eval except exec exit filter finally "
    "float for format from frozenset getattr global globals hasattr hash help hex id if "
    "import in input int is isinstance issubclass iter lambda len list locals map match max "
    "memoryview min next nonlocal not object oct open or ord pass pow print property quit "
    "raise range repr return reversed round set setattr slice sorted staticmethod str sum "
    "super tamrix try tuple type vars while with yield zip";

/// Of the user: nothing is left beside the script.
QString cacheFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
           QStringLiteral("/tamrix/python");
}

/// Whether the file says itself how it is encoded.
bool hasCodingLine(const QString& text) {
    return text.section('\n', 0, 1).contains(QLatin1String("coding"));
}

}  // namespace

PythonObjectMap::PythonObjectMap(const QString& path)
    : GenericScriptedObjectMap(path, "py",
                               {.heading = "# Names of objects, for scripts: import names\n",
                                .literal = [](const QString& text) { return literalOf(text); },
                                .reserved = reservedWords}) {}

bool PythonObjectMap::runScript(const QString& text) {
    // Compiling thousands of names takes longer than all else. A text that is tried is no file.
    const Outcome<Utf8Text> file = readUtf8File(path());
    if (file && file->text == text && !hasCodingLine(text)) {
        const PyRef code =
            callOwn("names", "imported_code", toPyString(path()), toPyString(cacheFolder()));
        if (code.get() != Py_None)
            PythonInterpreter::active()->rememberCode(text, path(), code);
    }
    return GenericScriptedObjectMap::runScript(text);
}

ScriptArgument::Map PythonObjectMap::scriptVariables() {
    const PyRef names = PythonInterpreter::active()->moduleNamespace();
    ScriptArgument::Map variables = PythonArgument(names).toMap();
    // The library's own stand among the script's.
    std::erase_if(variables, [](const auto& each) { return !each.second->isMap(); });
    return variables;
}

}  // namespace Tamrix::PythonPlugin

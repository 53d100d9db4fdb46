#pragma once

#include <QElapsedTimer>
#include <QString>

#include "base/export.h"
#include "interpreter/bridge/callarguments.h"
#include "interpreter/bridge/scriptargument.h"
#include "platform/testresult/lineinfo.h"

namespace Tamrix {

class ScriptContext;

/// The time in which a script function works on an application. Its end becomes an entry of the
/// results, unless these leave actions out; the record then costs nothing. Script thread only.
class TAMRIX_EXPORT ActionRecord {
public:
    /// For a function whose arguments and error are those of the context. It has failed when the
    /// context has an error in the end.
    ActionRecord(ScriptContext* context, const char* function);
    /// For a function of an application, which has its arguments elsewhere: setArguments() takes
    /// them. It has failed when setFailed() says so or an exception ends it.
    ActionRecord(ScriptContext* context, const QString& function);
    ~ActionRecord();
    ActionRecord(const ActionRecord&) = delete;
    ActionRecord& operator=(const ActionRecord&) = delete;

    void setArguments(const ScriptArgument::List& positional, const NamedArguments& named = {});
    /// The same without the texts, as what is entered into a field for passwords.
    void setArgumentsWithoutTexts(const ScriptArgument::List& positional,
                                  const NamedArguments& named);
    /// Whether anybody looks at what it is told.
    bool isWanted() const { return m_isWanted; }
    void setFailed() { m_hasFailed = true; }

private:
    bool hasFailed() const;

    ScriptContext* m_context;
    bool m_isWanted;
    bool m_usesContext;
    bool m_hasFailed = false;
    int m_exceptionsBefore = 0;
    QString m_function;
    QString m_arguments;
    LineInfo m_position;
    QElapsedTimer m_timer;
};

/// How an action tells its arguments: names of objects, texts, numbers, lists of these and the
/// language's null, with commas between; of long ones the beginning. Asks no application. Throws
/// what the language throws when a value has no text.
TAMRIX_EXPORT QString actionArguments(const ScriptArgument::List& positional,
                                      const NamedArguments& named = {});
/// The same with asterisks for the texts of all arguments but the object, which stands first or has
/// its name.
TAMRIX_EXPORT QString actionArgumentsWithoutTexts(const ScriptArgument::List& positional,
                                                  const NamedArguments& named);

}  // namespace Tamrix

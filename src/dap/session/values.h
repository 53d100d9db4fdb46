#pragma once

#include <QHash>
#include <QString>
#include <map>
#include <optional>
#include <vector>

#include "base/outcome.h"
#include "dap/program/debuggee.h"
#include "dap/protocol/messages.h"

namespace Tamrix::Dap {

/// The variables where the script stands, as a tree that is read when somebody opens it. Numbers
/// stand for what can be opened; they hold until the script goes on and are not used again.
class Values {
public:
    /// The number of what stands at the top of a function: where the script stands for 0, its
    /// caller for 1, and so on.
    int top(int level = 0);
    /// What stands below a number, of the debugger or from an earlier question.
    Outcome<std::vector<Variable>> below(int reference, Debuggee& debuggee);
    /// A value that is listed at the top or below, by the expression that reads it; nothing when
    /// none of those that were listed has it.
    std::optional<Variable> listed(const QString& expression) const;
    /// What is listed below the expression, which is empty for the top. Empty for what can't be
    /// opened.
    std::vector<Variable> members(const QString& expression, Debuggee& debuggee);

    /// A value may have changed: all is read again, under the numbers that there are.
    void refresh();
    /// The script has gone on.
    void clear();
    /// The file in which it stands: its language is that of expressions.
    void setFile(const QString& file) { m_file = file; }

private:
    struct Node {
        /// Of the debugger, empty for the variables where the script stands.
        QString path;
        /// Whether these are the variables of a function.
        bool isTop = false;
        /// What reads it where the script stands; null when nothing does.
        QString expression;
        std::optional<std::vector<Variable>> children;
    };
    int numberOf(const Node& node);
    Variable variableOf(const Binding& binding, const Node& parent);

    QString m_file;
    std::map<int, Node> m_nodes;
    /// By path.
    QHash<QString, int> m_numbers;
    int m_lastNumber = 0;
};

}  // namespace Tamrix::Dap

#pragma once

#include <QList>
#include <QString>
#include <memory>
#include <vector>

#include "runner/recording/actionmerger.h"

namespace Tamrix {

/// Makes one script of what is observed in the processes of a program: before what is done in
/// another one, the script makes that the current application. Plain logic without windows.
class ProcessesMerger {
public:
    ProcessesMerger(ActionMerger::Take take, ActionMerger::NameOf nameOf);

    /// Another process, by the name of its application: the first is the one that the script has
    /// started, the others follow in the order in which they come. Gives its number, from 0.
    int addProcess(const QString& name);

    void add(int process, const Wire::Observation& observation, qint64 now);
    void idle(qint64 now);
    void finish();

private:
    struct Process {
        QString name;
        std::unique_ptr<ActionMerger> merger;
        /// Whether the script knows it.
        bool isTaken = false;
    };

    void give(int process, const ScriptAction& action);
    void makeCurrent(int process);

    ActionMerger::Take m_take;
    ActionMerger::NameOf m_nameOf;
    std::vector<Process> m_processes;
    /// On which the script works.
    int m_current = 0;
};

}  // namespace Tamrix

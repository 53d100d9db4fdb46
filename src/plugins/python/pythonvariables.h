#pragma once

#include <QString>
#include <memory>
#include <vector>

#include "interpreter/language/languagevariables.h"
#include "plugins/python/valuetext.h"

namespace Tamrix::PythonPlugin {

class PythonInterpreter;

/// Lists the variables of a Python script that stands still.
class PythonVariables final : public LanguageVariables {
public:
    explicit PythonVariables(PythonInterpreter& interpreter);

protected:
    std::vector<Member> variablesOf(int level) override;
    Value memberNamed(const Value& value, const QString& name) override;

private:
    PythonInterpreter& m_python;
};

}  // namespace Tamrix::PythonPlugin

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
    void startListing() override { m_texts = PythonTexts(); }
    std::vector<Member> variablesOf(int level) override;
    Members membersOf(const Value& value, int first, int limit) override;
    bool hasMembers(const Value& value) override;
    Value memberNamed(const Value& value, const QString& name) override;
    QString textOf(const Value& value) override;

private:
    PythonInterpreter& m_python;
    PythonTexts m_texts;
};

}  // namespace Tamrix::PythonPlugin

// A language plug-in of tests: its interpreter is the fake one.

#include "support/fakelanguage.h"

extern "C" TAMRIX_EXPORT Tamrix::Interpreter* createInterpreter(Tamrix::RunnerInterface* runner) {
    return new Tamrix::Test::FakeInterpreter(runner, Tamrix::Interpreter::FAKE_LANGUAGE);
}

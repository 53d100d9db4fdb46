#include "plugins/ruby/rubywaits.h"

#include "base/blocking.h"
#include "plugins/ruby/protection.h"
#include "plugins/ruby/rubyinterpreter.h"

namespace Tamrix::RubyPlugin {

namespace {

/// Whether the script's thread is in a wait already.
bool s_isWaiting = false;

struct Wait {
    void (*work)(void* data);
    void* data;
    bool isDone = false;
};

void* runWait(void* data) {
    auto* const wait = static_cast<Wait*>(data);
    wait->isDone = true;
    wait->work(wait->data);
    return nullptr;
}

/// Ruby looks in front of a wait and behind it whether something is to be raised. The native
/// function that waits knows nothing of it: what is raised waits in its turn until that has ended.
void waitWithoutLock(void (*work)(void* data), void* data) {
    const RubyInterpreter* const interpreter = RubyInterpreter::active();
    if (!interpreter || !interpreter->isScriptThread() || s_isWaiting) {
        work(data);
        return;
    }
    s_isWaiting = true;
    Wait wait{work, data};
    while (!wait.isDone) {
        try {
            protect([&wait] {
                rb_nogvl(runWait, &wait, RUBY_UBF_IO, nullptr, 0);
                return Qnil;
            });
        } catch (const ScriptErrorSet&) {
            postponeJump();
        }
    }
    s_isWaiting = false;
}

}  // namespace

void installWaits() {
    BlockingSection::setLock(waitWithoutLock);
}

}  // namespace Tamrix::RubyPlugin

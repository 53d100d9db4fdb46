#pragma once

#include <memory>

#include "interpreter/language/languagecontext.h"
#include "interpreter/language/languageinterpreter.h"
#include "interpreter/language/nativefunction.h"

namespace Tamrix {

/// callNative() as it nearly always is: by the script's thread, of a function that makes no object,
/// with `count` arguments that are areInPlace(). `add` gives them to the call, a
/// LanguageContext::DirectCall<Argument>; `take` gets the result, an Argument* that is null for a
/// function without one, and may keep only the value in it. `object` stands for that of a method,
/// where there may be one. Gives why it has failed; null when it has not.
template <typename Argument, typename Interpreter, typename Add, typename Take, typename... Object>
std::unique_ptr<ScriptFailure> callDirectly(Interpreter& active, const NativeFunction& function,
                                            int count, Add add, Take take,
                                            const SharedPtr<Object>&... object) {
    active.output().flush();
    try {
        LanguageContext& context = active.context();
        LanguageContext::DirectCall<Argument> call(context, count);
        add(call);
        function.run(context, object...);
        active.noticeApplication();
        if (context.hasError()) [[unlikely]]
            return std::make_unique<ScriptFailure>(failureOf(context));
        call.giveResult(take);
        return nullptr;
    } catch (...) {
        return std::make_unique<ScriptFailure>(failureOfThrown(function));
    }
}

}  // namespace Tamrix

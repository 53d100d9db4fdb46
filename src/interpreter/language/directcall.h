#pragma once

#include <memory>
#include <type_traits>

#include "interpreter/language/languagecontext.h"
#include "interpreter/language/languageinterpreter.h"
#include "interpreter/language/nativefunction.h"

namespace Tamrix {

/// callNative() as it nearly always is: by the script's thread, of a function that makes no object,
/// with `count` arguments that are areInPlace(). `valueOf` gives what an Argument is made of, by
/// the place; `take` gets the result, an Argument* that is null for a function without one, and may
/// keep only the value in it. `object` stands for that of a method, where there may be one. Gives
/// why it has failed; null when it has not.
template <typename Argument, typename Interpreter, typename ValueOf, typename Take,
          typename... Object>
std::unique_ptr<ScriptFailure> callDirectly(Interpreter& active, const NativeFunction& function,
                                            int count, ValueOf valueOf, Take take,
                                            const SharedPtr<Object>&... object) {
    active.output().flush();
    try {
        LanguageContext& context = active.context();
        LanguageContext::DirectCall<Argument> call(context);
        if constexpr (std::is_constructible_v<Argument, Interpreter&, decltype(valueOf(0))>)
            call.giveArguments(count, valueOf, active);
        else
            call.giveArguments(count, valueOf);
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

#pragma once

#include <type_traits>

#include "interpreter/language/languagecontext.h"
#include "interpreter/language/languageinterpreter.h"
#include "interpreter/language/nativefunction.h"

namespace Tamrix {

/// callDirectly() in a context that is not busy.
template <typename Own, typename Interpreter, typename ValueOf, typename Take, typename... Object>
[[gnu::always_inline]] inline bool callWhenIdle(Interpreter& active, const NativeFunction& function,
                                                int count, ValueOf valueOf, Take take,
                                                const SharedPtr<Object>&... object) {
    active.output().flush();
    try {
        LanguageContext& context = active.context();
        LanguageContext::DirectCall<Own> call(context);
        if constexpr (std::is_constructible_v<typename Own::Argument, Interpreter&,
                                              decltype(valueOf(0))>)
            call.giveArguments(count, valueOf, active);
        else
            call.giveArguments(count, valueOf);
        function.run(context, active.runner(), object...);
        active.noticeApplication();
        if (call.gaveNothing()) {
            take(Own::makeNothing());
            return true;
        }
        if (!context.hasError()) [[likely]] {
            call.giveResult(take);
            return true;
        }
        active.keepCallFailure(failureOf(context));
    } catch (...) {
        active.keepCallFailure(failureOfThrown(function));
    }
    return false;
}

/// The same inside of another call, and behind one that has failed.
template <typename Own, typename Interpreter, typename ValueOf, typename Take, typename... Object>
[[gnu::noinline]] bool callInInterlude(Interpreter& active, const NativeFunction& function,
                                       int count, ValueOf valueOf, Take take,
                                       const SharedPtr<Object>&... object) {
    const LanguageContext::Interlude interlude(active.context());
    return callWhenIdle<Own>(active, function, count, valueOf, take, object...);
}

/// callNative() as it nearly always is: by the script's thread, of a function that makes no object,
/// with `count` arguments that are areInPlace(). `Own` is the plug-in's context, a ValueContext.
/// `valueOf` gives what an argument is made of, by the place; `take` gets the value of the result,
/// and is not called when there is a failure. `object` stands for that of a method, where there may
/// be one. False when it has failed: the interpreter's takeCallFailure() gives why.
template <typename Own, typename Interpreter, typename ValueOf, typename Take, typename... Object>
[[gnu::always_inline]] inline bool callDirectly(Interpreter& active, const NativeFunction& function,
                                                int count, ValueOf valueOf, Take take,
                                                const SharedPtr<Object>&... object) {
    if (active.context().isBusy()) [[unlikely]]
        return callInInterlude<Own>(active, function, count, valueOf, take, object...);
    return callWhenIdle<Own>(active, function, count, valueOf, take, object...);
}

}  // namespace Tamrix

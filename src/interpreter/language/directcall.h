#pragma once

#include <tl/expected.hpp>

#include "interpreter/language/languagecontext.h"
#include "interpreter/language/languageinterpreter.h"
#include "interpreter/language/nativefunction.h"

namespace Tamrix {

/// callNative() as it nearly always is: by the script's thread, of a function that makes no object,
/// with arguments that are areInPlace(). `add` gives them to the call, a
/// LanguageContext::DirectCall<Argument>; `take` gets the result, an Argument* that is null for a
/// function without one, and may keep only the value in it.
template <typename Argument, typename Interpreter, typename Add, typename Take>
tl::expected<void, ScriptFailure> callDirectly(Interpreter& active, const NativeFunction& function,
                                               const SharedPtr<NativeScriptObject>& object, Add add,
                                               Take take) {
    active.output().flush();
    return caught(function, [&]() -> tl::expected<void, ScriptFailure> {
        LanguageContext& context = active.context();
        LanguageContext::DirectCall<Argument> call(context);
        add(call);
        call.complete();
        function.run(context, object);
        active.noticeApplication();
        if (context.hasError())
            return tl::unexpected<ScriptFailure>(failureOf(context));
        call.giveResult(take);
        return {};
    });
}

}  // namespace Tamrix

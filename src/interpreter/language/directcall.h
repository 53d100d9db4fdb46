#pragma once

#include "interpreter/language/languagecontext.h"
#include "interpreter/language/languageinterpreter.h"
#include "interpreter/language/nativefunction.h"

namespace Tamrix {

/// callNative() as it nearly always is: by the script's thread, of a function that makes no object,
/// with arguments that are areInPlace(). `add` gives them to the call, a
/// LanguageContext::DirectCall<Argument>. What the native function throws passes.
template <typename Argument, typename Interpreter, typename Add>
ScriptResult callDirectly(Interpreter& active, const NativeFunction& function,
                          const SharedPtr<NativeScriptObject>& object, Add add) {
    active.output().flush();
    LanguageContext& context = active.context();
    LanguageContext::DirectCall<Argument> call(context);
    add(call);
    call.complete();
    function.run(context, object);
    active.noticeApplication();
    if (context.hasError())
        return tl::unexpected<ScriptFailure>(failureOf(context));
    return call.takeResult();
}

}  // namespace Tamrix

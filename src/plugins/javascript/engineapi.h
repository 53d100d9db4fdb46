#pragma once

// What the plug-in uses of the engine's interface.

#include <js/Array.h>
#include <js/BigInt.h>
#include <js/CompilationAndEvaluation.h>
#include <js/ContextOptions.h>
#include <js/Conversions.h>
#include <js/Date.h>
#include <js/Equality.h>
#include <js/Modules.h>
#include <js/Promise.h>
#include <js/Proxy.h>
#include <js/RegExp.h>
#include <js/SavedFrameAPI.h>
#include <js/SourceText.h>
#include <js/Symbol.h>
#include <js/Wrapper.h>
#include <js/experimental/TypedData.h>
#include <js/friend/ErrorMessages.h>
#include <js/friend/StackLimits.h>
#include <jsapi.h>
#include <jsfriendapi.h>

#include <tcl.h>

#include "bareruntime.h"

namespace Tamrix::Bench {

namespace {

int nothing(void*, Tcl_Interp* interp, int count, Tcl_Obj* const* words) {
    if (count != 1) {
        Tcl_WrongNumArgs(interp, 1, words, nullptr);
        return TCL_ERROR;
    }
    return TCL_OK;
}

int plus(void*, Tcl_Interp* interp, int count, Tcl_Obj* const* words) {
    if (count != 3) {
        Tcl_WrongNumArgs(interp, 1, words, "left right");
        return TCL_ERROR;
    }
    Tcl_WideInt left = 0;
    Tcl_WideInt right = 0;
    if (Tcl_GetWideIntFromObj(interp, words[1], &left) != TCL_OK ||
        Tcl_GetWideIntFromObj(interp, words[2], &right) != TCL_OK)
        return TCL_ERROR;
    Tcl_SetObjResult(interp, Tcl_NewWideIntObj(left + right));
    return TCL_OK;
}

int now(void*, Tcl_Interp* interp, int, Tcl_Obj* const*) {
    Tcl_SetObjResult(interp, Tcl_NewWideIntObj(nanosecondsNow()));
    return TCL_OK;
}

int report(void*, Tcl_Interp* interp, int count, Tcl_Obj* const* words) {
    double nanoseconds = 0;
    if (count != 3) {
        Tcl_WrongNumArgs(interp, 1, words, "what nanoseconds");
        return TCL_ERROR;
    }
    if (Tcl_GetDoubleFromObj(interp, words[2], &nanoseconds) != TCL_OK)
        return TCL_ERROR;
    keepReport(Tcl_GetString(words[1]), nanoseconds);
    return TCL_OK;
}

}  // namespace

void runBareTcl(const char* script, const std::function<void()>& onStarted) {
    Tcl_FindExecutable(nullptr);
    Tcl_Interp* const interp = Tcl_CreateInterp();
    if (Tcl_Init(interp) != TCL_OK)
        giveUp(Tcl_GetStringResult(interp));
    onStarted();
    Tcl_CreateObjCommand(interp, "nothing", nothing, nullptr, nullptr);
    Tcl_CreateObjCommand(interp, "plus", plus, nullptr, nullptr);
    Tcl_CreateObjCommand(interp, "now", now, nullptr, nullptr);
    Tcl_CreateObjCommand(interp, "report", report, nullptr, nullptr);
    if (Tcl_Eval(interp, script) != TCL_OK || Tcl_Eval(interp, "main") != TCL_OK)
        giveUp(Tcl_GetStringResult(interp));
}

}  // namespace Tamrix::Bench

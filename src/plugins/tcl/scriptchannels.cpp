#include "plugins/tcl/scriptchannels.h"

#include <unistd.h>

#include <cerrno>

#include "interpreter/language/scriptoutput.h"
#include "plugins/tcl/conversion.h"

namespace Tamrix::TclPlugin {

namespace {

struct Stream {
    ScriptOutput* output;
    ScriptOutput::Stream kind;
};

int closeStream(void* instance, Tcl_Interp*) {
    delete static_cast<Stream*>(instance);
    return 0;
}

int writeStream(void* instance, const char* bytes, int count, int*) {
    const auto* const stream = static_cast<Stream*>(instance);
    // Tcl hands over whole characters only, as UTF-8 has them.
    stream->output->write(stream->kind, fromTclBytes({bytes, static_cast<std::size_t>(count)}));
    return count;
}

int readStream(void*, char* buffer, int size, int* error) {
    const ssize_t count = ::read(STDIN_FILENO, buffer, static_cast<std::size_t>(size));
    if (count < 0)
        *error = errno;
    return static_cast<int>(count);
}

/// Of all three: Tcl itself sees to it that none is read or written that is not open for it.
const Tcl_ChannelType& channelType() {
    static const Tcl_ChannelType s_type = [] {
        Tcl_ChannelType type = {};
        type.typeName = "script";
        type.version = TCL_CHANNEL_VERSION_5;
        type.closeProc = closeStream;
        type.inputProc = readStream;
        type.outputProc = writeStream;
        type.watchProc = [](void*, int) {};
        type.getHandleProc = [](void*, int, void**) { return TCL_ERROR; };
        return type;
    }();
    return s_type;
}

Tcl_Channel makeStandard(const char* name, int mode, int which, ScriptOutput& output,
                         ScriptOutput::Stream kind) {
    const Tcl_Channel channel =
        Tcl_CreateChannel(&channelType(), name, new Stream{&output, kind}, mode);
    Tcl_SetChannelOption(nullptr, channel, "-encoding", "utf-8");
    Tcl_SetChannelOption(nullptr, channel, "-translation", "lf");
    // What is written stands in order with the results.
    Tcl_SetChannelOption(nullptr, channel, "-buffering", mode == TCL_WRITABLE ? "none" : "line");
    Tcl_SetStdChannel(channel, which);
    return channel;
}

}  // namespace

void installChannels(Tcl_Interp* interp, ScriptOutput& output) {
    // An interpreter takes all three with the first one: so they are made before.
    const Tcl_Channel channels[] = {
        makeStandard("stdin", TCL_READABLE, TCL_STDIN, output, ScriptOutput::Stdout),
        makeStandard("stdout", TCL_WRITABLE, TCL_STDOUT, output, ScriptOutput::Stdout),
        makeStandard("stderr", TCL_WRITABLE, TCL_STDERR, output, ScriptOutput::Stderr),
    };
    for (const Tcl_Channel channel : channels)
        Tcl_RegisterChannel(interp, channel);
}

}  // namespace Tamrix::TclPlugin

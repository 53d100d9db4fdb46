#include "plugins/tcl/scriptchannels.h"

#include <unistd.h>

#include <cerrno>
#include <memory>

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

int refuseWrite(void*, const char*, int, int* error) {
    *error = EINVAL;
    return -1;
}

int readStream(void*, char* buffer, int size, int* error) {
    const ssize_t count = ::read(STDIN_FILENO, buffer, static_cast<std::size_t>(size));
    if (count < 0)
        *error = errno;
    return static_cast<int>(count);
}

int refuseRead(void*, char*, int, int* error) {
    *error = EINVAL;
    return -1;
}

void watchNothing(void*, int) {}

int giveHandle(void*, int, void**) {
    return TCL_ERROR;
}

Tcl_ChannelType channelType(Tcl_DriverInputProc* read, Tcl_DriverOutputProc* write) {
    Tcl_ChannelType type = {};
    type.typeName = "script";
    type.version = TCL_CHANNEL_VERSION_5;
    type.closeProc = closeStream;
    type.inputProc = read;
    type.outputProc = write;
    type.watchProc = watchNothing;
    type.getHandleProc = giveHandle;
    return type;
}

Tcl_Channel makeStandard(const Tcl_ChannelType& type, const char* name, int mode, int which,
                         Stream* stream) {
    const Tcl_Channel channel = Tcl_CreateChannel(&type, name, stream, mode);
    Tcl_SetChannelOption(nullptr, channel, "-encoding", "utf-8");
    Tcl_SetChannelOption(nullptr, channel, "-translation", "lf");
    // What is written stands in order with the results.
    Tcl_SetChannelOption(nullptr, channel, "-buffering", mode == TCL_WRITABLE ? "none" : "line");
    Tcl_SetStdChannel(channel, which);
    return channel;
}

}  // namespace

void installChannels(Tcl_Interp* interp, ScriptOutput& output) {
    static const Tcl_ChannelType s_input = channelType(readStream, refuseWrite);
    static const Tcl_ChannelType s_output = channelType(refuseRead, writeStream);
    // An interpreter takes all three with the first one: so they are made before.
    const Tcl_Channel channels[] = {
        makeStandard(s_input, "stdin", TCL_READABLE, TCL_STDIN,
                     new Stream{&output, ScriptOutput::Stdout}),
        makeStandard(s_output, "stdout", TCL_WRITABLE, TCL_STDOUT,
                     new Stream{&output, ScriptOutput::Stdout}),
        makeStandard(s_output, "stderr", TCL_WRITABLE, TCL_STDERR,
                     new Stream{&output, ScriptOutput::Stderr}),
    };
    for (const Tcl_Channel channel : channels)
        Tcl_RegisterChannel(interp, channel);
}

}  // namespace Tamrix::TclPlugin

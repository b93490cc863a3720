#include "Termination.h"

#include <csignal>
#include <fcntl.h>
#include <initializer_list>
#include <unistd.h>

namespace tvx::platform {

namespace {

int g_writeEnd = -1;

extern "C" void requestTermination(int)
{
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(g_writeEnd, &byte, 1);
}

} // namespace

int terminationDescriptor()
{
    static int readEnd = -1;
    if (readEnd >= 0)
        return readEnd;
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
        return -1;
    readEnd = ends[0];
    g_writeEnd = ends[1];
    struct sigaction action {};
    action.sa_handler = requestTermination;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaction(signal, &action, nullptr);
    return readEnd;
}

void acknowledgeTermination()
{
    char drained[16];
    while (::read(terminationDescriptor(), drained, sizeof drained) > 0) {
    }
}

} // namespace tvx::platform

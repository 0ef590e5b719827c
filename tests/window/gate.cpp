// Preloaded into the program under test: opening a file for reading waits for as long as a pipe named "gate
// of file NAME" stands in STANDIN_STATE and nobody has opened that for writing. So a test sees, for as long
// as it likes, what the window shows while the program reads that file.

#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using Open = int (*)(const char *, int, ...);

// Also called between fork and exec: without memory from the heap.
void waitAtGateOf(const char *path, Open plainOpen)
{
    const char *state = std::getenv("STANDIN_STATE");
    if (state == nullptr || path == nullptr) {
        return;
    }
    const char *slash = std::strrchr(path, '/');
    std::array<char, 4096> gate{};
    struct stat entry = {};
    const int length = std::snprintf(gate.data(), gate.size(), "%s/gate of file %s", state,
                                     slash == nullptr ? path : slash + 1);
    if (length >= int(gate.size()) || ::stat(gate.data(), &entry) != 0 || !S_ISFIFO(entry.st_mode)) {
        return;
    }
    // Returns when there is a writer, who ends what is to be read when the gate is gone.
    const int pipe = plainOpen(gate.data(), O_RDONLY | O_CLOEXEC);
    char byte = 0;
    while (pipe >= 0 && ::read(pipe, &byte, 1) > 0) {
    }
    ::close(pipe);
}

} // namespace

// Under another name in here: the system's headers may have declared that one with more than its type.
extern "C" __attribute__((visibility("default"))) int openAtGate(const char *path, int flags,
                                                                 ...) asm("open");

int openAtGate(const char *path, int flags, ...)
{
    static const auto plainOpen = reinterpret_cast<Open>(::dlsym(RTLD_NEXT, "open"));
    const bool hasMode = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    va_list arguments;
    va_start(arguments, flags);
    const int mode = hasMode ? va_arg(arguments, int) : 0;
    va_end(arguments);
    if ((flags & O_ACCMODE) == O_RDONLY) {
        waitAtGateOf(path, plainOpen);
    }
    return plainOpen(path, flags, mode);
}

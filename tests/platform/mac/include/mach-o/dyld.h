// Declared as the system's manual page dyld(3) gives it.
#pragma once

#include <cstdint>

extern "C" int _NSGetExecutablePath(char *buffer, std::uint32_t *size);

#pragma once

#include <functional>

class QObject;

namespace caldra {

enum class ThreadStart {
    whenNeeded,
    never, ///< where the thread does not run, there is nothing to do
};

/// Runs `work` in the library's own thread, at once when called there, else as soon as that thread comes to
/// it. `work` gets an object that lives as long as the thread.
///
/// The thread ends with the QCoreApplication. Work that comes later, or without any application, is destroyed
/// without having run. Any thread.
void runOnLibraryThread(std::function<void(QObject &context)> work,
                        ThreadStart start = ThreadStart::whenNeeded);

/// Runs longer work beside the library's thread. Not on the application's thread pool: its threads may all be
/// waiting for calls of the library.
void runBesideLibraryThread(std::function<void()> work);

} // namespace caldra

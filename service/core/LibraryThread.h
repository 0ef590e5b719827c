#pragma once

#include <functional>

class QObject;

namespace caldra {

/// An object that lives in the library's own thread; the thread starts with the first use and ends with the
/// QCoreApplication. Any thread.
QObject *libraryContext();
/// The same, null when the thread does not run.
QObject *runningLibraryContext();

/// Runs longer work beside the library's thread. Not on the application's thread pool: its threads may all be
/// waiting for calls of the library.
void runBesideLibraryThread(std::function<void()> work);

} // namespace caldra

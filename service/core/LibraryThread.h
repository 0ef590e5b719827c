#pragma once

class QObject;

namespace caldra {

/// An object that lives in the library's own thread; the thread starts with the first use and ends with the
/// QCoreApplication. Any thread.
QObject *libraryContext();
/// The same, null when the thread does not run.
QObject *runningLibraryContext();

} // namespace caldra

#pragma once

#include <QObject>
#include <QString>

namespace zorel::library {

/// What the backend controller asks of the library of archived runs.
class RunLibrary : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Reads the run folders of `finishedModelsPath` (absolute, "~" expanded) anew.
    virtual void scan(const QString &finishedModelsPath) = 0;
};

} // namespace zorel::library

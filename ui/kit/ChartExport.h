#pragma once

#include "ui/kit/ChartCsv.h"

#include <QObject>

#include <memory>

class QThread;

namespace zorel::ui::kit {

/// Writes points to a file while the window goes on. Main thread.
class ChartExport : public QObject
{
    Q_OBJECT

public:
    explicit ChartExport(QObject *parent = nullptr);
    /// Waits for a file that is being written.
    ~ChartExport() override;

    /// Makes the points the content of the file, or leaves the file as it was. One file at a time: a call
    /// before the other is written fails at once.
    void write(const QString &path, std::vector<ChartTable> tables);

Q_SIGNALS:
    void written(const QString &path);
    /// `message` is for the user.
    void failed(const QString &path, const QString &message);

private:
    std::unique_ptr<QThread> m_thread;
};

} // namespace zorel::ui::kit

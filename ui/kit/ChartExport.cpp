#include "ui/kit/ChartExport.h"

#include "platform/AtomicFile.h"

#include <QDir>
#include <QThread>

#include <utility>

namespace zorel::ui::kit {

ChartExport::ChartExport(QObject *parent)
    : QObject(parent)
{}

ChartExport::~ChartExport()
{
    if (m_thread) {
        m_thread->wait();
    }
}

void ChartExport::write(const QString &path, std::vector<ChartTable> tables)
{
    if (m_thread) {
        Q_EMIT failed(path, QStringLiteral("Another file is still being written. Try again in a moment."));
        return;
    }
    auto isWritten = std::make_shared<bool>(false);
    m_thread.reset(QThread::create([path, tables = std::move(tables), isWritten] {
        *isWritten = platform::replaceFile(path, chartCsv(tables));
    }));
    connect(m_thread.get(), &QThread::finished, this, [this, path, isWritten] {
        m_thread->wait();
        m_thread.reset();
        if (*isWritten) {
            Q_EMIT written(path);
        } else {
            Q_EMIT failed(path, QStringLiteral(
                                    "The points could not be written to “%1”. Check that you may write there "
                                    "and that the disk is not full.")
                                    .arg(QDir::toNativeSeparators(path)));
        }
    });
    m_thread->start();
}

} // namespace zorel::ui::kit

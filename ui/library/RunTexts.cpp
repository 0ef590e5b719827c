#include "ui/library/RunTexts.h"

#include "app/presentation/DecimalText.h"
#include "library/ArchiveDate.h"

#include <QDateTime>
#include <QLocale>

namespace zorel::ui::library {

using zorel::library::ArchivedModelRecord;

namespace {

QString dateText(const ArchivedModelRecord &run, QLocale::FormatType format)
{
    return run.archivedAt
               ? QLocale().toString(zorel::library::toDateTime(*run.archivedAt).toLocalTime(), format)
               : QString();
}

} // namespace

QString nameAndVersion(const ArchivedModelRecord &run)
{
    return run.name + QStringLiteral(" v") + run.version;
}

QString shortDateText(const ArchivedModelRecord &run)
{
    return dateText(run, QLocale::ShortFormat);
}

QString longDateText(const ArchivedModelRecord &run)
{
    return dateText(run, QLocale::LongFormat);
}

QString rowLossText(const ArchivedModelRecord &run)
{
    return app::presentation::fixedText(run.finalLoss, 3);
}

} // namespace zorel::ui::library

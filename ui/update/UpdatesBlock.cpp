#include "ui/update/UpdatesBlock.h"

#include "ui/kit/ActionButton.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/TextLabel.h"
#include "updater/UpdateChecker.h"

#include <QLocale>
#include <QVBoxLayout>

namespace zorel::ui::update {

using zorel::updater::UpdateChecker;

namespace {

kit::TextLabel *centredCaption(const QString &text, kit::ColorRole role = kit::ColorRole::Secondary)
{
    auto *label = new kit::TextLabel(text, kit::TextRole::Caption, kit::Weight::Regular, role);
    label->setAlignment(Qt::AlignHCenter);
    return label;
}

} // namespace

UpdatesBlock::UpdatesBlock(UpdateChecker &checker, QWidget *parent)
    : QWidget(parent)
    , m_checker(checker)
    , m_check(new kit::ActionButton(QStringLiteral("arrow.triangle.2.circlepath"),
                                    QStringLiteral("Check for Updates")))
    , m_checking(new kit::TextLabel(QStringLiteral("Checking for Updates…")))
    , m_lastCheck(centredCaption(QString()))
    , m_failure(centredCaption(QString(), kit::ColorRole::Danger))
{
    m_checking->setAlignment(Qt::AlignHCenter);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(kit::spacing::half);
    column->addWidget(m_check, 0, Qt::AlignHCenter);
    column->addWidget(m_checking);
    column->addWidget(centredCaption(QStringLiteral("Updates are checked automatically once a day.")));
    column->addWidget(m_lastCheck);
    column->addWidget(m_failure);
    connect(m_check, &kit::ActionButton::clicked, &m_checker, &UpdateChecker::checkForUpdates);
    for (const auto signal : {&UpdateChecker::isCheckingChanged, &UpdateChecker::lastCheckedAtChanged,
                              &UpdateChecker::lastErrorChanged}) {
        connect(&m_checker, signal, this, &UpdatesBlock::refresh);
    }
    refresh();
}

void UpdatesBlock::refresh()
{
    m_check->setVisible(!m_checker.isChecking());
    m_checking->setVisible(m_checker.isChecking());
    const auto &last = m_checker.lastCheckedAt();
    m_lastCheck->setText(last ? QStringLiteral("Last checked: ") +
                                    QLocale().toString(last->toLocalTime(), QLocale::ShortFormat)
                              : QStringLiteral("Not checked yet."));
    const auto &error = m_checker.lastError();
    m_failure->setText(error ? QStringLiteral("Last check failed: ") + *error : QString());
    m_failure->setVisible(error.has_value());
}

} // namespace zorel::ui::update

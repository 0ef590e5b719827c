#pragma once

#include "app/settings/ModelFamily.h"

#include <QWidget>

namespace zorel::backend::protocol {
struct TrainStatusPayload;
}
namespace zorel::ui::kit {
class ElidedLabel;
class ProgressMeter;
} // namespace zorel::ui::kit

namespace zorel::ui::dashboard {

/// How far the preparation of the data has come.
class PreparationView : public QWidget
{
    Q_OBJECT

public:
    explicit PreparationView(QWidget *parent = nullptr);

    void follow(const backend::protocol::TrainStatusPayload &status, app::settings::ModelFamily family);

private:
    QWidget *makeDuration(const QString &symbol, const QString &name, kit::ElidedLabel *value);

    kit::ElidedLabel *m_percentage;
    kit::ProgressMeter *m_meter;
    kit::ElidedLabel *m_detail;
    kit::ElidedLabel *m_elapsed;
    kit::ElidedLabel *m_remaining;
    QWidget *m_remainingGroup;
};

} // namespace zorel::ui::dashboard

#include "service/core/DecodingError.h"

#include <vector>

using namespace Qt::StringLiterals;

namespace caldra {

DecodingError::DecodingError(QString path, QString reason)
    : m_path(std::move(path))
    , m_reason(std::move(reason))
    , m_what(description().toUtf8())
{}

QString DecodingError::description() const
{
    return m_path.isEmpty() ? m_reason : m_path + u": "_s + m_reason;
}

const char *DecodingError::what() const noexcept
{
    return m_what.constData();
}

QString DecodingPath::text() const
{
    std::vector<const DecodingPath *> steps;
    for (const DecodingPath *step = this; step; step = step->parent) {
        steps.push_back(step);
    }

    QString text;
    for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
        const DecodingPath &here = **step;
        if (here.index >= 0) {
            text += u'[' + QString::number(here.index) + u']';
        } else if (!here.key.empty()) {
            if (!text.isEmpty()) {
                text += u'.';
            }
            text += QString::fromUtf8(here.key.data(), qsizetype(here.key.size()));
        }
    }
    return text;
}

void failDecoding(const DecodingPath &path, const QString &reason)
{
    throw DecodingError(path.text(), reason);
}

} // namespace caldra

#pragma once

#include <QString>

#include <exception>
#include <string_view>

namespace caldra {

/// Why a JSON text could not become the value asked for.
class DecodingError : public std::exception
{
public:
    DecodingError() = default;
    /// `path` names the field ("data.applications[3].slug"); it is empty when the text as a whole is no JSON.
    DecodingError(QString path, QString reason);

    const QString &path() const { return m_path; }
    const QString &reason() const { return m_reason; }
    /// The field and the reason in one sentence.
    QString description() const;
    const char *what() const noexcept override;

private:
    QString m_path;
    QString m_reason;
    QByteArray m_what;
};

/// Where the decoder stands: a chain of stack frames, turned into text only when something fails.
struct DecodingPath
{
    const DecodingPath *parent = nullptr;
    std::string_view key;
    qsizetype index = -1;

    QString text() const;
};

[[noreturn]] void failDecoding(const DecodingPath &path, const QString &reason);

} // namespace caldra

#pragma once

#include "platform/FileUserDefaults.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace zorel::tests {

/// A file of user defaults in a folder of its own for each test.
class FileUserDefaultsFixture : public QObject
{
protected:
    void makeFolder()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_file = m_folder->filePath(QStringLiteral("zorel.json"));
    }

    void store(const QByteArray &bytes) const
    {
        QFile file(m_file);
        QVERIFY(file.open(QFile::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }

    /// Whether the file holds an object, and only that.
    bool isWhole() const { return document().isObject(); }
    /// What the file holds; empty where that is no object.
    QJsonObject stored() const { return document().object(); }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_file;

private:
    QJsonDocument document() const
    {
        QFile file(m_file);
        return QJsonDocument::fromJson(file.open(QFile::ReadOnly) ? file.readAll() : QByteArray());
    }
};

} // namespace zorel::tests

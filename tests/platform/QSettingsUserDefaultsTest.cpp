#include "platform/QSettingsUserDefaults.h"

#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

using zorel::platform::QSettingsUserDefaults;

/// Over an INI file, whose QSettings keys are those of every other format.
class QSettingsUserDefaultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void dotOfTheSystemsKeyIsTheSeparatorOfQSettings();
    void valuesComeBackWithTheirType();
    void datesAreStoredAsDates();
    void valuesOfOtherTypesReadAsAbsent();
    void destructionPersists();

private:
    std::unique_ptr<QSettings> open() const
    {
        return std::make_unique<QSettings>(m_folder->filePath(QStringLiteral("s.ini")), QSettings::IniFormat);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void QSettingsUserDefaultsTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
}

void QSettingsUserDefaultsTest::dotOfTheSystemsKeyIsTheSeparatorOfQSettings()
{
    QSettingsUserDefaults store(open());
    store.setString(QStringLiteral("talvex.updater.lastCheckAt"), QStringLiteral("now"));
    store.synchronize();
    QCOMPARE(open()->allKeys(), QStringList{QStringLiteral("talvex/updater/lastCheckAt")});
}

void QSettingsUserDefaultsTest::valuesComeBackWithTheirType()
{
    QSettingsUserDefaults store(open());
    store.setString(QStringLiteral("zorel.modelName"), QStringLiteral("Poet"));
    store.setString(QStringLiteral("zorel.modelAuthor"), QStringLiteral(""));
    store.setBoolean(QStringLiteral("zorel.logExpanded"), false);
    QCOMPARE(store.string(QStringLiteral("zorel.modelName")), QStringLiteral("Poet"));
    QCOMPARE(store.string(QStringLiteral("zorel.modelAuthor")), QString());
    QCOMPARE(store.boolean(QStringLiteral("zorel.logExpanded")), false);
}

void QSettingsUserDefaultsTest::datesAreStoredAsDates()
{
    const QDateTime date(QDate(2026, 1, 2), QTime(3, 4, 5), Qt::UTC);
    {
        QSettingsUserDefaults store(open());
        store.setDate(QStringLiteral("talvex.updater.lastCheckAt"), date);
        QCOMPARE(store.date(QStringLiteral("talvex.updater.lastCheckAt")), date);
        QVERIFY(!store.string(QStringLiteral("talvex.updater.lastCheckAt")));
    }
    const QVariant stored = open()->value(QStringLiteral("talvex/updater/lastCheckAt"));
    QCOMPARE(stored.typeId(), int(QMetaType::QDateTime));
    // The one kind that the Mac's own format stores as a date.
    QCOMPARE(stored.toDateTime().timeSpec(), Qt::LocalTime);
    QCOMPARE(stored.toDateTime(), date);
}

void QSettingsUserDefaultsTest::valuesOfOtherTypesReadAsAbsent()
{
    auto settings = open();
    settings->setValue(QStringLiteral("zorel/a"), 7);
    settings->setValue(QStringLiteral("zorel/b"), true);
    settings->setValue(QStringLiteral("zorel/c"), QStringList{QStringLiteral("x")});
    const QSettingsUserDefaults store(std::move(settings));
    QVERIFY(!store.string(QStringLiteral("zorel.a")) && !store.boolean(QStringLiteral("zorel.a")));
    QVERIFY(!store.string(QStringLiteral("zorel.b")) && store.boolean(QStringLiteral("zorel.b")));
    QVERIFY(!store.string(QStringLiteral("zorel.c")));
    QVERIFY(!store.string(QStringLiteral("zorel.absent")) && !store.boolean(QStringLiteral("zorel.absent")));
    for (const char *key : {"zorel.a", "zorel.b", "zorel.c", "zorel.absent"}) {
        QVERIFY2(!store.date(QString::fromUtf8(key)), key);
    }
}

void QSettingsUserDefaultsTest::destructionPersists()
{
    QSettingsUserDefaults(open()).setString(QStringLiteral("zorel.modelName"), QStringLiteral("Poet"));
    QCOMPARE(QSettingsUserDefaults(open()).string(QStringLiteral("zorel.modelName")), QStringLiteral("Poet"));
}

QTEST_GUILESS_MAIN(QSettingsUserDefaultsTest)
#include "QSettingsUserDefaultsTest.moc"

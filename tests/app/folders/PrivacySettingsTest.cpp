#include "app/folders/PrivacySettings.h"

#include <QTest>

using zorel::app::folders::openPrivacySettings;

class PrivacySettingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void addressesAreTriedUntilOneOpens_data();
    void addressesAreTriedUntilOneOpens();
};

void PrivacySettingsTest::addressesAreTriedUntilOneOpens_data()
{
    QTest::addColumn<int>("opening");
    QTest::addColumn<int>("tried");
    QTest::newRow("the first opens") << 0 << 1;
    QTest::newRow("the second opens") << 1 << 2;
    QTest::newRow("the third opens") << 2 << 3;
    QTest::newRow("none opens") << -1 << 3;
}

void PrivacySettingsTest::addressesAreTriedUntilOneOpens()
{
    QFETCH(int, opening);
    QFETCH(int, tried);
    const QStringList addresses{
        QStringLiteral("x-apple.systempreferences:com.apple.settings.PrivacySecurity.extension"
                       "?Privacy_FilesAndFolders"),
        QStringLiteral("x-apple.systempreferences:com.apple.preference.security?Privacy_FilesAndFolders"),
        QStringLiteral("x-apple.systempreferences:com.apple.preference.security?Privacy_DocumentsFolder")};
    QStringList opened;
    const bool isOpen = openPrivacySettings([&](const QUrl &url) {
        opened.append(url.toString(QUrl::FullyEncoded));
        return opened.size() - 1 == opening;
    });
    QCOMPARE(opened, addresses.mid(0, tried));
    QCOMPARE(isOpen, opening >= 0);
}

QTEST_GUILESS_MAIN(PrivacySettingsTest)
#include "PrivacySettingsTest.moc"

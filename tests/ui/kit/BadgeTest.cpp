#include "ui/kit/Badge.h"

#include "tests/ui/kit/Screen.h"
#include "ui/kit/Palettes.h"

#include <QApplication>

namespace zorel::tests {

using namespace ui::kit;

class BadgeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QApplication::setPalette(lightPalette()); }
    void isNamedByItsText();
    void changes();
    void staysSmallWithALongText();
    void isDrawnInItsTone();
};

void BadgeTest::isNamedByItsText()
{
    Badge badge(QStringLiteral("checkmark.shield.fill"), QStringLiteral("Allowed"), ColorRole::Success);
    QCOMPARE(spoken(&badge).role(), QAccessible::StaticText);
    QCOMPARE(spokenName(&badge), QStringLiteral("Allowed"));
}

void BadgeTest::changes()
{
    Badge badge({}, QStringLiteral("Default"), ColorRole::Secondary);
    const int before = badge.sizeHint().width();
    badge.setBadge(QStringLiteral("exclamationmark.shield.fill"), QStringLiteral("Needs access"),
                   ColorRole::Warning);
    QCOMPARE(badge.text(), QStringLiteral("Needs access"));
    QCOMPARE(spokenName(&badge), QStringLiteral("Needs access"));
    QVERIFY(badge.sizeHint().width() > before);
}

void BadgeTest::staysSmallWithALongText()
{
    Badge badge({}, QStringLiteral("<b>\n").repeated(2500), ColorRole::Text);
    QVERIFY(badge.minimumSizeHint().width() < 120);
    QVERIFY(badge.sizeHint().height() < 40);
    showAt(badge, {100, 24});
    QVERIFY(!picture(badge).isNull());
}

void BadgeTest::isDrawnInItsTone()
{
    Badge badge(QStringLiteral("circle.fill"), QStringLiteral("Failed"), ColorRole::Danger);
    showAt(badge, badge.sizeHint());
    for (const QPalette &palette : {lightPalette(), darkPalette()}) {
        QApplication::setPalette(palette);
        QTRY_VERIFY(pixelsOf(picture(badge), color(ColorRole::Danger, palette)) > 30);
        QVERIFY(pixelsOf(picture(badge), tint(ColorRole::Danger, palette)) > 100);
    }
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::BadgeTest)
#include "BadgeTest.moc"

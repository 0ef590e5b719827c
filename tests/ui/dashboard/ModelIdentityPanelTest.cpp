#include "ui/dashboard/ModelIdentityPanel.h"

#include "tests/ui/dashboard/Stage.h"
#include "ui/kit/CollapsibleSection.h"
#include "ui/kit/KitStyle.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

namespace zorel::tests {

using ui::dashboard::ModelIdentityPanel;

class ModelIdentityPanelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void isCollapsedAtFirst();
    void showsItsTexts();
    void showsItsSymbol();
    void namesStandBesideTheirFields();
    void storesAndSendsEachEdit();
    void storesAndSendsTheDescription();
    void sendsNothingWhenSettingsChangeElsewhere();
    void resetsAndSendsOnce();
    void leavesEmptyFieldsOut();
    void takesAnyText_data();
    void takesAnyText();
    void takesWhatAssistiveTechnologyWrites();
    void tabLeavesTheDescription();

private:
    QLineEdit *line(const char *name) const;
    QPlainTextEdit *description() const { return m_panel->findChild<QPlainTextEdit *>(); }
    int sends() const
    {
        return static_cast<int>(m_stage->log().filter(QStringLiteral("set_model_identity")).size());
    }

    std::unique_ptr<Stage> m_stage;
    std::unique_ptr<ModelIdentityPanel> m_panel;
};

void ModelIdentityPanelTest::init()
{
    m_stage = std::make_unique<Stage>();
    m_panel = std::make_unique<ModelIdentityPanel>(m_stage->backend, m_stage->settings);
    m_panel->show();
}

void ModelIdentityPanelTest::cleanup()
{
    m_panel.reset();
    m_stage.reset();
}

QLineEdit *ModelIdentityPanelTest::line(const char *name) const
{
    for (QLineEdit *field : m_panel->findChildren<QLineEdit *>()) {
        if (field->accessibleName() == QLatin1String(name)) {
            return field;
        }
    }
    return nullptr;
}

void ModelIdentityPanelTest::namesStandBesideTheirFields()
{
    QApplication::setStyle(new ui::kit::KitStyle);
    ModelIdentityPanel panel(m_stage->backend, m_stage->settings);
    panel.findChild<ui::kit::CollapsibleSection *>()->setExpanded(true);
    panel.show();
    const auto middle = [&panel](const QWidget *widget) {
        return widget->mapTo(&panel, widget->rect().center()).y();
    };
    int lines = 0;
    for (const QLabel *name : panel.findChildren<QLabel *>()) {
        if (const auto *field = qobject_cast<QLineEdit *>(name->buddy())) {
            QTRY_COMPARE(middle(name), middle(field));
            ++lines;
        }
    }
    QCOMPARE(lines, 4);
}

void ModelIdentityPanelTest::isCollapsedAtFirst()
{
    auto *section = m_panel->findChild<ui::kit::CollapsibleSection *>();
    QVERIFY(!m_panel->identityExpanded());
    QVERIFY(!line("Name")->isVisible());
    section->header()->click();
    QVERIFY(m_panel->identityExpanded());
    QVERIFY(line("Name")->isVisible());
}

void ModelIdentityPanelTest::showsItsTexts()
{
    m_panel->findChild<ui::kit::CollapsibleSection *>()->setExpanded(true);
    for (const char *text :
         {"Model Identity",
          "Like an Apple Info.plist for your custom model — these values are baked into the archived model's "
          "ModelInfo.json and the auto-generated README. Editable any time before the run finishes.",
          "Name", "MyModel", "Version", "1.0.0", "Author", "License", "MIT", "Description",
          "A short summary of what this model does."}) {
        QVERIFY2(shows(m_panel.get(), QString::fromUtf8(text)), text);
    }
    QCOMPARE(line("Name")->placeholderText(), QStringLiteral("MyModel"));
    QCOMPARE(line("Version")->placeholderText(), QStringLiteral("1.0.0"));
    QCOMPARE(line("License")->placeholderText(), QStringLiteral("MIT"));
    QVERIFY(line("Author")->placeholderText().contains(QLatin1Char('@')));
}

void ModelIdentityPanelTest::showsItsSymbol()
{
    QCOMPARE(symbols(m_panel.get()), QStringList(QStringLiteral("tag.fill")));
}

void ModelIdentityPanelTest::storesAndSendsEachEdit()
{
    const std::pair<const char *, const QString &(app::settings::ZorelSettings::*)() const> fields[]{
        {"Name", &app::settings::ZorelSettings::modelName},
        {"Version", &app::settings::ZorelSettings::modelVersion},
        {"Author", &app::settings::ZorelSettings::modelAuthor},
        {"License", &app::settings::ZorelSettings::modelLicense}};
    int expected = 0;
    for (const auto &[name, value] : fields) {
        QLineEdit *field = line(name);
        field->selectAll();
        QTest::keyClicks(field, QStringLiteral("abc"));
        QCOMPARE((m_stage->settings.*value)(), QStringLiteral("abc"));
        QCOMPARE(sends(), expected += 3); // one a key
    }
    QCOMPARE(m_stage->store.values.value(QStringLiteral("zorel.modelLicense")), QStringLiteral("abc"));
}

void ModelIdentityPanelTest::storesAndSendsTheDescription()
{
    QTest::keyClicks(description(), QStringLiteral("ab"));
    QTest::keyClick(description(), Qt::Key_Return);
    QTest::keyClicks(description(), QStringLiteral("c"));
    QCOMPARE(m_stage->settings.modelDescription(), QStringLiteral("ab\nc"));
    QCOMPARE(sends(), 4);
}

void ModelIdentityPanelTest::sendsNothingWhenSettingsChangeElsewhere()
{
    m_stage->settings.setModelName(QStringLiteral("Other"));
    m_stage->settings.setModelDescription(QStringLiteral("two\nlines"));
    QCOMPARE(line("Name")->text(), QStringLiteral("Other"));
    QCOMPARE(description()->toPlainText(), QStringLiteral("two\nlines"));
    QCOMPARE(sends(), 0);
}

void ModelIdentityPanelTest::resetsAndSendsOnce()
{
    m_stage->settings.setModelName(QStringLiteral("Other"));
    m_stage->settings.setModelAuthor(QStringLiteral("Ada"));
    m_stage->settings.setModelDescription(QStringLiteral("text"));
    m_stage->settings.setModelLicense(QStringLiteral("GPL"));
    m_panel->findChild<ui::kit::CollapsibleSection *>()->setExpanded(true);
    m_stage->launchRecorder();
    button(m_panel.get(), QStringLiteral("Reset Identity"))->click();
    QCOMPARE(line("Name")->text(), QStringLiteral("MyModel"));
    QCOMPARE(line("Version")->text(), QStringLiteral("1.0.0"));
    QCOMPARE(line("Author")->text(), QString());
    QCOMPARE(line("License")->text(), QStringLiteral("MIT"));
    QCOMPARE(description()->toPlainText(), QString());
    m_stage->backend.sendCommand(QStringLiteral("stop")); // whatever came before it has arrived with it
    QTRY_COMPARE(m_stage->commands(QStringLiteral("stop")).size(), std::size_t{1});
    const auto sent = m_stage->commands(QStringLiteral("set_model_identity"));
    QCOMPARE(sent.size(), std::size_t{2}); // the first follows "ready"
    QCOMPARE(sent.back().value(QLatin1String("identity")).toObject(),
             (QJsonObject{{QStringLiteral("name"), QStringLiteral("MyModel")},
                          {QStringLiteral("version"), QStringLiteral("1.0.0")},
                          {QStringLiteral("license"), QStringLiteral("MIT")}}));
}

void ModelIdentityPanelTest::leavesEmptyFieldsOut()
{
    m_stage->launchRecorder();
    line("Name")->clear();
    line("Author")->setText(QStringLiteral("   "));
    line("License")->setText(QStringLiteral(" BSD\n"));
    QTRY_COMPARE(m_stage->commands(QStringLiteral("set_model_identity")).size(), std::size_t{4});
    QCOMPARE(m_stage->commands(QStringLiteral("set_model_identity"))
                 .back()
                 .value(QLatin1String("identity"))
                 .toObject(),
             (QJsonObject{{QStringLiteral("version"), QStringLiteral("1.0.0")},
                          {QStringLiteral("license"), QStringLiteral("BSD")}}));
    QCOMPARE(m_stage->settings.modelAuthor(), QStringLiteral("   ")); // stored as typed
}

void ModelIdentityPanelTest::takesAnyText_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("quotes") << QStringLiteral("\"quoted\" 'text' \\ %1 %s <b>&amp;</b>");
    QTest::newRow("line breaks") << QStringLiteral("first\nsecond");
    QTest::newRow("right to left") << QStringLiteral("שם המודל — اسم النموذج");
    QTest::newRow("10,000 characters") << QString(10'000, QLatin1Char('x'));
    QTest::newRow("beyond the basic plane") << QStringLiteral("🧠 model");
}

void ModelIdentityPanelTest::takesAnyText()
{
    QFETCH(QString, text);
    QApplication::clipboard()->setText(text);
    for (const char *name : {"Name", "Version", "Author", "License"}) {
        line(name)->selectAll();
        line(name)->paste();
        QCOMPARE(line(name)->text(), text);
    }
    description()->selectAll();
    description()->paste();
    for (const QString &stored :
         {m_stage->settings.modelName(), m_stage->settings.modelVersion(), m_stage->settings.modelAuthor(),
          m_stage->settings.modelLicense(), m_stage->settings.modelDescription()}) {
        QCOMPARE(stored, text);
    }
}

void ModelIdentityPanelTest::takesWhatAssistiveTechnologyWrites()
{
    QAccessible::queryAccessibleInterface(line("Name"))
        ->setText(QAccessible::Value, QStringLiteral("Spoken"));
    QCOMPARE(m_stage->settings.modelName(), QStringLiteral("Spoken"));
    QCOMPARE(sends(), 1);
}

void ModelIdentityPanelTest::tabLeavesTheDescription()
{
    m_panel->findChild<ui::kit::CollapsibleSection *>()->setExpanded(true);
    QVERIFY(QTest::qWaitForWindowActive(m_panel.get()));
    description()->setFocus();
    QTest::keyClick(description(), Qt::Key_Tab);
    QVERIFY(button(m_panel.get(), QStringLiteral("Reset Identity"))->hasFocus());
    QCOMPARE(description()->toPlainText(), QString());
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::ModelIdentityPanelTest)
#include "ModelIdentityPanelTest.moc"

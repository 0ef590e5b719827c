#include "updater/InstallerScript.h"
#include "tests/updater/ExpectedScript.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTest>

using namespace zorel::updater;

namespace {

InstallerScript example()
{
    return {4711, QStringLiteral("/work/staged/New.app"),
            QStringLiteral("/Applications/Talvex LLM Trainer.app"), QStringLiteral("/work/install.log"),
            QStringLiteral("/work/exited.sentinel")};
}

/// The lines of the script without indentation, continuation, empty lines and comments.
QStringList commandsOf(const InstallerScript &script)
{
    QString text = script.text();
    text.replace(QRegularExpression(QStringLiteral(" \\\\\n *")), QStringLiteral(" "));
    QStringList commands;
    const QStringList lines = text.split(u'\n');
    for (const QString &line : lines) {
        const QString command = line.trimmed();
        if (!command.isEmpty() && (!command.startsWith(u'#') || command.startsWith(QLatin1String("#!")))) {
            commands.append(command);
        }
    }
    return commands;
}

/// What a shell makes of the word.
QByteArray readByShell(const QString &word)
{
    QProcess shell;
    shell.start(QStringLiteral("/bin/bash"), {QStringLiteral("-c"), QStringLiteral("printf %s ") + word});
    shell.waitForFinished();
    return shell.readAllStandardOutput();
}

} // namespace

class InstallerScriptTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itBeginsWithItsValues();
    void everyLineIsAsItShouldBe();
    void theWaitIsExplained();
    void aShellFindsNoFault();
    void quotedPathsAreOneWord_data();
    void quotedPathsAreOneWord();
    void aSingleQuoteBecomesFourCharacters();
    void theAdministratorCommandCarriesPlainPathsAlone_data();
    void theAdministratorCommandCarriesPlainPathsAlone();
};

void InstallerScriptTest::itBeginsWithItsValues()
{
    QVERIFY(example().text().startsWith(QStringLiteral("#!/bin/bash\n"
                                                       "set -u\n"
                                                       "PID=4711\n"
                                                       "NEW_APP='/work/staged/New.app'\n"
                                                       "TARGET_APP='/Applications/Talvex LLM Trainer.app'\n"
                                                       "LOG_FILE='/work/install.log'\n"
                                                       "SENTINEL='/work/exited.sentinel'\n")));
}

void InstallerScriptTest::everyLineIsAsItShouldBe()
{
    const QStringList expected =
        QString::fromUtf8(zorel::tests::everyLineOfTheScript).split(u'\n', Qt::SkipEmptyParts);
    const QStringList actual = commandsOf(example());
    for (qsizetype line = 0; line < std::min(actual.size(), expected.size()); ++line) {
        QCOMPARE(actual[line], expected[line]);
    }
    QCOMPARE(actual.size(), expected.size());
    QVERIFY(example().text().endsWith(QStringLiteral("exit 0\n")));
}

void InstallerScriptTest::theWaitIsExplained()
{
    QVERIFY(example().text().contains(
        QStringLiteral("# Wait up to 30s for the running app to exit, OR for the parent\n")));
}

void InstallerScriptTest::aShellFindsNoFault()
{
    QProcess shell;
    shell.start(QStringLiteral("/bin/bash"), {QStringLiteral("-n")});
    shell.write(example().text().toUtf8());
    shell.closeWriteChannel();
    QVERIFY(shell.waitForFinished());
    QCOMPARE(shell.exitCode(), 0);
    QCOMPARE(shell.readAllStandardError(), QByteArray());
}

void InstallerScriptTest::quotedPathsAreOneWord_data()
{
    QTest::addColumn<QString>("path");
    for (const char *path : {"/plain", "/with blanks  in it", "/a'b", "'", "''", "/it's \"quoted\"",
                             "/$(touch /pwned)", "/`touch /pwned`", "/$HOME/${PATH}", "/a\\b\\",
                             "/two\nlines\n", "-rf", "/*?[a]", "/!history", "/;&|<>()", "/Тренер", "~", ""}) {
        QTest::addRow("%s", path) << QString::fromUtf8(path);
    }
}

void InstallerScriptTest::quotedPathsAreOneWord()
{
    QFETCH(QString, path);
    QCOMPARE(readByShell(shellQuoted(path)), path.toUtf8());
}

void InstallerScriptTest::aSingleQuoteBecomesFourCharacters()
{
    QCOMPARE(shellQuoted(QStringLiteral("/a'b")), QStringLiteral(R"('/a'\''b')"));
    InstallerScript script = example();
    script.targetApp = QStringLiteral("/Bob's/A.app");
    QVERIFY(script.text().contains(QStringLiteral(R"(
TARGET_APP='/Bob'\''s/A.app'
)")));
}

void InstallerScriptTest::theAdministratorCommandCarriesPlainPathsAlone_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("fits");
    const auto row = [](const char *name, const char *path, bool fits) {
        QTest::newRow(name) << QString::fromUtf8(path) << fits;
    };
    row("plain", "/Applications/Talvex LLM Trainer.app", true);
    row("a command", "/$(touch pwned)`touch pwned`;&|<>", true);
    row("not Latin", "/Тренер.app", true);
    row("quote", "/a'b", false);
    row("double quote", "/a\"b", false);
    row("backslash", "/a\\b", false);
    row("line feed", "/a\nb", false);
    row("carriage return", "/a\rb", false);
    row("escape", "/a\x1b", false);
    row("delete", "/a\x7f", false);
}

void InstallerScriptTest::theAdministratorCommandCarriesPlainPathsAlone()
{
    QFETCH(QString, path);
    QFETCH(bool, fits);
    QCOMPARE(fitsAdministratorCommand(path), fits);
}

QTEST_GUILESS_MAIN(InstallerScriptTest)
#include "InstallerScriptTest.moc"

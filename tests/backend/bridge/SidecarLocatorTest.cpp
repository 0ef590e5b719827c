#include "backend/bridge/SidecarLocator.h"

#include <QSet>
#include <QTest>

using namespace zorel::backend::bridge;

namespace {

/// A made-up machine: what exists on it and which interpreters import MLX.
struct Machine
{
    QSet<QString> files;
    QSet<QString> executables;
    QMap<QString, std::optional<int>> probeResults;
    QStringList probed;
    SidecarHost host;

    Machine()
    {
        host.home = QStringLiteral("/home/ada");
        host.bundleResources = QStringLiteral("/apps/Trainer.app/Contents/Resources");
        host.bundleParent = QStringLiteral("/apps");
        host.checkoutSidecar = QStringLiteral("/checkout/sidecar");
        host.fileExists = [this](const QString &path) {
            return files.contains(path);
        };
        host.isExecutableFile = [this](const QString &path) {
            return executables.contains(path);
        };
        host.run = [this](const QString &program, const QStringList &arguments) {
            if (arguments != QStringList{QStringLiteral("-c"), QStringLiteral("import mlx")}) {
                qFatal("probed with other arguments");
            }
            probed.append(program);
            return probeResults.value(program);
        };
    }

    void addScripts(const QString &root) { files.insert(root + QStringLiteral("/src/app_backend.py")); }
    void addPython(const QString &path, std::optional<int> probeResult)
    {
        executables.insert(path);
        probeResults.insert(path, probeResult);
    }

    /// The error's text, or what was found.
    QString outcome()
    {
        try {
            const SidecarLocator found = SidecarLocator::locate(host);
            return found.python + QStringLiteral(" | ") + found.backendScript + QStringLiteral(" | ") +
                   found.scriptsRoot;
        } catch (const LocateError &error) {
            return error.description();
        }
    }
};

const QString systemPython = QStringLiteral("/usr/bin/python3");

} // namespace

class SidecarLocatorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void scriptsAreLookedForInOrder();
    void outsideABundleOnlyTheCheckoutRemains();
    void anEmptyOverrideIsAFirstCandidateThatHoldsNothing();
    void anOverrideWithoutScriptFallsThroughToTheBundle();
    void withoutScriptsTheErrorNamesTheFirstCandidate();
    void withoutAnyCandidateTheErrorSaysNone();
    void interpretersAreTriedInOrder();
    void aHomePython312WithMLXWinsOverTheSystemOne();
    void interpretersAreProbedOnlyUntilOnePasses();
    void missingInterpretersAreNotListedAsTried();
    void withoutAnyInterpreterTheTriedPartIsEmpty();
    void aRootWithoutMLXStopsTheSearch();
    void aProbeThatCannotRunCountsAsWithoutMLX();
};

void SidecarLocatorTest::scriptsAreLookedForInOrder()
{
    Machine machine;
    machine.host.scriptsRootOverride = QStringLiteral("/override");
    QCOMPARE(SidecarLocator::scriptsRootCandidates(machine.host),
             QStringList({QStringLiteral("/override"),
                          QStringLiteral("/apps/Trainer.app/Contents/Resources/sidecar"),
                          QStringLiteral("/apps/Training Scripts"), QStringLiteral("/checkout/sidecar")}));

    machine.addPython(systemPython, 0);
    for (const QString &root :
         {QStringLiteral("/checkout/sidecar"), QStringLiteral("/apps/Training Scripts"),
          QStringLiteral("/apps/Trainer.app/Contents/Resources/sidecar"), QStringLiteral("/override")}) {
        machine.addScripts(root);
        QCOMPARE(machine.outcome(), systemPython + QStringLiteral(" | ") + root +
                                        QStringLiteral("/src/app_backend.py | ") + root);
    }
}

void SidecarLocatorTest::outsideABundleOnlyTheCheckoutRemains()
{
    Machine machine;
    machine.host.bundleResources.reset();
    machine.host.bundleParent.reset();
    QCOMPARE(SidecarLocator::scriptsRootCandidates(machine.host),
             QStringList{QStringLiteral("/checkout/sidecar")});
}

void SidecarLocatorTest::anEmptyOverrideIsAFirstCandidateThatHoldsNothing()
{
    Machine machine;
    machine.host.scriptsRootOverride = QString();
    machine.addScripts(QString()); // a script at the root of the file system is not meant
    QCOMPARE(SidecarLocator::scriptsRootCandidates(machine.host).constFirst(), QString());
    QCOMPARE(machine.outcome(), QStringLiteral("Training scripts not found at "));
}

void SidecarLocatorTest::anOverrideWithoutScriptFallsThroughToTheBundle()
{
    Machine machine;
    machine.host.scriptsRootOverride = QStringLiteral("/override");
    QCOMPARE(machine.outcome(), QStringLiteral("Training scripts not found at /override"));
    machine.addPython(systemPython, 0);
    machine.addScripts(QStringLiteral("/apps/Trainer.app/Contents/Resources/sidecar"));
    QVERIFY(machine.outcome().endsWith(QStringLiteral("| /apps/Trainer.app/Contents/Resources/sidecar")));
}

void SidecarLocatorTest::withoutScriptsTheErrorNamesTheFirstCandidate()
{
    Machine machine;
    QCOMPARE(machine.outcome(),
             QStringLiteral("Training scripts not found at /apps/Trainer.app/Contents/Resources/sidecar"));
    QVERIFY(machine.probed.isEmpty());
}

void SidecarLocatorTest::withoutAnyCandidateTheErrorSaysNone()
{
    Machine machine;
    machine.host.bundleResources.reset();
    machine.host.bundleParent.reset();
    machine.host.checkoutSidecar.clear();
    QCOMPARE(machine.outcome(), QStringLiteral("Training scripts not found at (none)"));
}

void SidecarLocatorTest::interpretersAreTriedInOrder()
{
    const QStringList expected{QStringLiteral("/home/ada/Library/Python/3.12/bin/python3"),
                               QStringLiteral("/home/ada/Library/Python/3.11/bin/python3"),
                               QStringLiteral("/home/ada/Library/Python/3.10/bin/python3"),
                               QStringLiteral("/home/ada/Library/Python/3.9/bin/python3"),
                               QStringLiteral("/usr/bin/python3"),
                               QStringLiteral("/usr/local/bin/python3"),
                               QStringLiteral("/opt/homebrew/bin/python3")};
    Machine machine;
    machine.addScripts(QStringLiteral("/checkout/sidecar"));
    for (const QString &python : expected) {
        machine.addPython(python, 1);
    }
    QCOMPARE(machine.outcome(), QStringLiteral("No Python with MLX found. Tried: ") +
                                    expected.join(QStringLiteral(", ")) +
                                    QStringLiteral(". Install with: python3 -m pip install mlx"));
    QCOMPARE(machine.probed, expected);
}

void SidecarLocatorTest::aHomePython312WithMLXWinsOverTheSystemOne()
{
    Machine machine;
    machine.addScripts(QStringLiteral("/checkout/sidecar"));
    machine.addPython(systemPython, 0);
    machine.addPython(QStringLiteral("/home/ada/Library/Python/3.12/bin/python3"), 0);
    QVERIFY(machine.outcome().startsWith(QStringLiteral("/home/ada/Library/Python/3.12/bin/python3 |")));
}

void SidecarLocatorTest::interpretersAreProbedOnlyUntilOnePasses()
{
    Machine machine;
    machine.addScripts(QStringLiteral("/checkout/sidecar"));
    machine.addPython(QStringLiteral("/home/ada/Library/Python/3.10/bin/python3"), 1);
    machine.addPython(systemPython, 0);
    machine.addPython(QStringLiteral("/opt/homebrew/bin/python3"), 0);
    QVERIFY(machine.outcome().startsWith(systemPython));
    QCOMPARE(machine.probed,
             QStringList({QStringLiteral("/home/ada/Library/Python/3.10/bin/python3"), systemPython}));
}

void SidecarLocatorTest::missingInterpretersAreNotListedAsTried()
{
    Machine machine;
    machine.addScripts(QStringLiteral("/checkout/sidecar"));
    machine.addPython(systemPython, 1);
    QCOMPARE(machine.outcome(), QStringLiteral("No Python with MLX found. Tried: /usr/bin/python3. "
                                               "Install with: python3 -m pip install mlx"));
}

void SidecarLocatorTest::withoutAnyInterpreterTheTriedPartIsEmpty()
{
    Machine machine;
    machine.addScripts(QStringLiteral("/checkout/sidecar"));
    QCOMPARE(machine.outcome(), QStringLiteral("No Python with MLX found. Tried: . "
                                               "Install with: python3 -m pip install mlx"));
}

void SidecarLocatorTest::aRootWithoutMLXStopsTheSearch()
{
    Machine machine;
    machine.host.scriptsRootOverride = QStringLiteral("/override");
    machine.addScripts(QStringLiteral("/override"));
    machine.addScripts(QStringLiteral("/checkout/sidecar"));
    machine.addPython(systemPython, 1);
    QVERIFY(machine.outcome().startsWith(QStringLiteral("No Python with MLX found.")));
    QCOMPARE(machine.probed.size(), 1); // a second root would have probed again
}

void SidecarLocatorTest::aProbeThatCannotRunCountsAsWithoutMLX()
{
    Machine machine;
    machine.addScripts(QStringLiteral("/checkout/sidecar"));
    machine.addPython(systemPython, std::nullopt);
    QCOMPARE(machine.outcome(), QStringLiteral("No Python with MLX found. Tried: /usr/bin/python3. "
                                               "Install with: python3 -m pip install mlx"));
}

QTEST_GUILESS_MAIN(SidecarLocatorTest)
#include "SidecarLocatorTest.moc"

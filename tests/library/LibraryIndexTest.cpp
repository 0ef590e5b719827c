#include "library/LibraryIndex.h"

#include <QStringList>
#include <QTest>

using zorel::library::ArchivedModelRecord;
using zorel::library::LibraryGroup;
using zorel::library::LibraryIndex;

namespace {

ArchivedModelRecord run(const char *name, const char *version, const char *folder)
{
    ArchivedModelRecord record;
    record.name = QString::fromUtf8(name);
    record.version = QString::fromUtf8(version);
    record.folderName = QString::fromUtf8(folder);
    record.author = QStringLiteral("Lovelace");
    record.modelFamily = QStringLiteral("text_language");
    record.trainingCapability = QStringLiteral("pretrain");
    return record;
}

/// "name: folder folder" for each group.
QStringList shown(const QList<LibraryGroup> &groups)
{
    QStringList lines;
    for (const LibraryGroup &group : groups) {
        QString line = group.name + u':';
        for (const ArchivedModelRecord &member : group.runs) {
            line += u' ' + member.folderName;
        }
        lines << line;
    }
    return lines;
}

QStringList lines(std::initializer_list<const char *> texts)
{
    QStringList list;
    for (const char *text : texts) {
        list << QString::fromUtf8(text);
    }
    return list;
}

} // namespace

class LibraryIndexTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void groupsByExactName();
    void keepsTheLibrarysOrderInAGroup();
    void findsRegardlessOfCase();
    void searchesNameVersionAndFolderOnly_data();
    void searchesNameVersionAndFolderOnly();
    void anEmptySearchFindsEverything();
    void spacesCount();
    void foundGroupsKeepOrderAndName();
    void resultsOutliveTheIndex();
    void anEmptyLibraryHasNoGroups();
};

void LibraryIndexTest::groupsByExactName()
{
    const LibraryIndex index({run("b", "1", "r1"), run("a", "1", "r2"), run("B", "1", "r3"),
                              run("ä", "1", "r4"), run("a ", "1", "r5"), run("", "1", "r6"),
                              run("b", "1", "r7")});
    QCOMPARE(shown(index.groups()), lines({": r6", "B: r3", "a: r2", "a : r5", "b: r1 r7", "ä: r4"}));
}

void LibraryIndexTest::keepsTheLibrarysOrderInAGroup()
{
    const LibraryIndex index(
        {run("m", "1", "3"), run("n", "1", "9"), run("m", "1", "1"), run("m", "1", "2")});
    QCOMPARE(shown(index.groups()), lines({"m: 3 1 2", "n: 9"}));
    QCOMPARE(index.groups()[0].runs[2].folderName, QStringLiteral("2"));
}

void LibraryIndexTest::findsRegardlessOfCase()
{
    const LibraryIndex index(
        {run("tiny-lm", "1", "r1"), run("ÄRGER", "1", "r2"), run("x", "Beta", "r3"), run("x", "1", "RUN-4")});
    QCOMPARE(shown(index.matching(QStringLiteral("TINY"))), lines({"tiny-lm: r1"}));
    QCOMPARE(shown(index.matching(QStringLiteral("ärg"))), lines({"ÄRGER: r2"}));
    QCOMPARE(shown(index.matching(QStringLiteral("bETA"))), lines({"x: r3"}));
    QCOMPARE(shown(index.matching(QStringLiteral("run-"))), lines({"x: RUN-4"}));
}

void LibraryIndexTest::searchesNameVersionAndFolderOnly_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<bool>("isFound");
    QTest::newRow("name") << QStringLiteral("ny-l") << true;
    QTest::newRow("version") << QStringLiteral("2.0") << true;
    QTest::newRow("folder") << QStringLiteral("06-01_") << true;
    QTest::newRow("author") << QStringLiteral("Lovelace") << false;
    QTest::newRow("family") << QStringLiteral("text_language") << false;
    QTest::newRow("capability") << QStringLiteral("pretrain") << false;
    QTest::newRow("over two fields") << QStringLiteral("tiny-lm1") << false;
    QTest::newRow("pattern") << QStringLiteral("t.*m") << false;
}

void LibraryIndexTest::searchesNameVersionAndFolderOnly()
{
    QFETCH(QString, query);
    QFETCH(bool, isFound);
    const LibraryIndex index({run("tiny-lm", "1.2.0", "2026-06-01_21-44-12")});
    QCOMPARE(!index.matching(query).isEmpty(), isFound);
}

void LibraryIndexTest::anEmptySearchFindsEverything()
{
    const LibraryIndex index({run("a", "1", "r1"), run("b", "1", "r2")});
    QCOMPARE(index.matching(QString()), index.groups());
    QCOMPARE(index.matching(QStringLiteral("")), index.groups());
}

void LibraryIndexTest::spacesCount()
{
    const LibraryIndex index({run("a", "1", "r1"), run("b", "1", "run two"), run("c  d", "1", "r3")});
    QCOMPARE(shown(index.matching(QStringLiteral(" "))), lines({"b: run two", "c  d: r3"}));
    QCOMPARE(shown(index.matching(QStringLiteral("  "))), lines({"c  d: r3"}));
    QVERIFY(index.matching(QStringLiteral(" a")).isEmpty());
}

void LibraryIndexTest::foundGroupsKeepOrderAndName()
{
    const LibraryIndex index({run("c", "9", "r5"), run("a", "1", "r4"), run("c", "1", "r3"),
                              run("b", "2", "r2"), run("a", "9", "r1")});
    QCOMPARE(shown(index.matching(QStringLiteral("9"))), lines({"a: r1", "c: r5"}));
    QCOMPARE(shown(index.matching(QStringLiteral("r"))), lines({"a: r4 r1", "b: r2", "c: r5 r3"}));
}

void LibraryIndexTest::resultsOutliveTheIndex()
{
    QList<LibraryGroup> groups;
    {
        const LibraryIndex index({run("a", "1", "r1"), run("a", "2", "r2")});
        groups = index.matching(QStringLiteral("r2"));
    }
    QCOMPARE(shown(groups), lines({"a: r2"}));
}

void LibraryIndexTest::anEmptyLibraryHasNoGroups()
{
    QVERIFY(LibraryIndex().groups().isEmpty());
    QVERIFY(LibraryIndex(QList<ArchivedModelRecord>()).matching(QStringLiteral("a")).isEmpty());
}

QTEST_APPLESS_MAIN(LibraryIndexTest)
#include "LibraryIndexTest.moc"

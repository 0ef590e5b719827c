#include "platform/Sha256.h"

#include <QCryptographicHash>
#include <QTest>

using zorel::platform::Sha256;

class Sha256Test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knownDigests_data();
    void knownDigests();
    void piecesMakeTheSameDigestAsTheWhole();
    void anObjectCanBeMoved();
};

void Sha256Test::knownDigests_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("digest");
    QTest::newRow("nothing") << QByteArray()
                             << QByteArray(
                                    "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    QTest::newRow("abc") << QByteArray("abc")
                         << QByteArray("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    QTest::newRow("a million") << QByteArray(1'000'000, 'a')
                               << QByteArray(
                                      "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

void Sha256Test::knownDigests()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, digest);
    Sha256 hash;
    hash.add(bytes);
    QCOMPARE(hash.result().toHex(), digest);
}

void Sha256Test::piecesMakeTheSameDigestAsTheWhole()
{
    QByteArray bytes(300'000, '\0');
    for (qsizetype index = 0; index < bytes.size(); ++index) {
        bytes[index] = static_cast<char>(index * 7 + index / 251);
    }
    const QByteArray expected = QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
    for (const qsizetype piece :
         {qsizetype{1}, qsizetype{63}, qsizetype{64}, qsizetype{65}, qsizetype{4096}}) {
        Sha256 hash;
        for (qsizetype at = 0; at < bytes.size(); at += piece) {
            hash.add(QByteArrayView(bytes).sliced(at, std::min(piece, bytes.size() - at)));
        }
        QCOMPARE(hash.result(), expected);
    }
}

void Sha256Test::anObjectCanBeMoved()
{
    Sha256 first;
    first.add("ab");
    Sha256 second(std::move(first));
    second.add("c");
    Sha256 third;
    third = std::move(second);
    QCOMPARE(third.result().toHex().left(8), QByteArray("ba7816bf"));
}

QTEST_GUILESS_MAIN(Sha256Test)
#include "Sha256Test.moc"

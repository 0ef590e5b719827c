#include <QDir>
#include <QFile>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size);

/// Runs each file of a folder through the fuzzed function.
int main(int argc, char **argv)
{
    const QDir corpus(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString());
    int count = 0;
    for (const QString &name : corpus.entryList(QDir::Files)) {
        QFile file(corpus.filePath(name));
        if (!file.open(QFile::ReadOnly)) {
            return 1;
        }
        const QByteArray bytes = file.readAll();
        LLVMFuzzerTestOneInput(reinterpret_cast<const unsigned char *>(bytes.constData()),
                               std::size_t(bytes.size()));
        ++count;
    }
    return count > 0 ? 0 : 1;
}

#include "platform/InformationDictionary.h"

#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

namespace zorel::platform {

namespace {

constexpr qint64 mostBytes = qint64{1024} * 1024;

/// Reads from behind <dict> to its end.
InformationDictionary readTexts(QXmlStreamReader &reader)
{
    InformationDictionary texts;
    while (reader.readNextStartElement()) {
        if (reader.name() != QLatin1String("key")) {
            reader.raiseError(QStringLiteral("a value without a key"));
            break;
        }
        const QString key = reader.readElementText();
        if (!reader.readNextStartElement()) {
            reader.raiseError(QStringLiteral("a key without a value"));
            break;
        }
        if (reader.name() == QLatin1String("string")) {
            texts.insert(key, reader.readElementText());
        } else {
            texts.remove(key);
            reader.skipCurrentElement();
        }
    }
    return texts;
}

} // namespace

InformationDictionary parseInformationDictionary(const QByteArray &xml)
{
    QXmlStreamReader reader(xml);
    InformationDictionary dictionary;
    if (reader.readNextStartElement() && reader.name() == QLatin1String("plist") &&
        reader.readNextStartElement() && reader.name() == QLatin1String("dict")) {
        dictionary = readTexts(reader);
    }
    while (!reader.atEnd()) {
        reader.readNext();
    }
    return reader.hasError() ? InformationDictionary() : dictionary;
}

InformationDictionary informationDictionaryOf(const std::optional<Bundle> &bundle)
{
    if (!bundle) {
        return {};
    }
    QFile file(bundle->path + QLatin1String("/Contents/Info.plist"));
    // A pipe or a device in the file's place must not be waited for.
    if (!QFileInfo(file).isFile() || file.size() > mostBytes || !file.open(QFile::ReadOnly)) {
        return {};
    }
    return parseInformationDictionary(file.readAll());
}

const InformationDictionary &mainInformationDictionary()
{
    // An update moves the bundle away while the old process still runs.
    static const InformationDictionary dictionary = informationDictionaryOf(mainBundle());
    return dictionary;
}

} // namespace zorel::platform

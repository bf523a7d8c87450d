#include "FuzzTarget.h"

#include "CommonConstants.h"
#include "Files.h"
#include "PlatformServices_p.h"

#include <QTemporaryDir>
#include <QXmlStreamWriter>

#include <algorithm>

// The property list of a bundle: XML, binary, and the older form.

using VEK_NAMESPACE::Platform::propertyListText;

namespace {

bool isForXml(const QString& text)
{
    return std::all_of(text.cbegin(), text.cend(), [](QChar character) {
        const ushort code = character.unicode();
        return (code >= 0x20 && code < 0xD800) || (code > 0xDFFF && code < 0xFFFE) || code == '\t'
            || code == '\n';
    });
}

QByteArray listWith(const QString& key, const QString& text)
{
    QByteArray list;
    QXmlStreamWriter writer(&list);
    writer.writeStartDocument();
    writer.writeStartElement(QStringLiteral("plist"));
    writer.writeStartElement(QStringLiteral("dict"));
    writer.writeTextElement(QStringLiteral("key"), key);
    writer.writeTextElement(QStringLiteral("string"), text);
    writer.writeEndDocument();
    return list;
}

} // namespace

int LLVMFuzzerInitialize(int*, char***)
{
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("Info.plist"));
    const QByteArray content = bytesOf(data, size);
    require(writeFile(path, content), "the property list can be written");

    for (const char* name : {"CFBundleIdentifier", "CFBundleName", "CFBundleVersion", "a", ""}) {
        const QString key = QString::fromLatin1(name);
        const QString text = propertyListText(path, key);
        require(readFile(path) == content, "a list that is read stays as it is");
        if (text.isEmpty() || !isForXml(text))
            continue;
        const QString copy = folder.filePath(QStringLiteral("Copy.plist"));
        require(writeFile(copy, listWith(key, text)), "the copy can be written");
        require(propertyListText(copy, key) == text, "a text that was read is read again");
    }
    return 0;
}

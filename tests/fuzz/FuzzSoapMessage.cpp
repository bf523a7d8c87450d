#include "FuzzTarget.h"

#include "qtsoap.h"

#include <QDomDocument>

// Replies of SOAP servers.

namespace {

void readEverything(const QtSoapType& value, int depth)
{
    require(depth <= 200, "values nest 196 levels deep at most");
    (void)value.isValid();
    (void)value.value();
    (void)value.toString();
    (void)value.toInt();
    (void)value.toBool();
    (void)value.typeName();
    (void)value.errorString();
    (void)value[value.name()];
    // References multiply what a short document says, so not all of it is visited.
    for (int i = 0; i < qMin(value.count(), 8) && depth < 24; ++i)
        readEverything(value[i], depth + 1);
}

void iterate(const QtSoapType& value)
{
    if (value.type() == QtSoapType::Array) {
        if (const auto* array = dynamic_cast<const QtSoapArray*>(&value)) {
            QtSoapArray copy(*array);
            int members = 0;
            for (QtSoapArrayIterator it(copy); !it.atEnd(); ++it) {
                int position[5] = {};
                it.pos(position, position + 1, position + 2, position + 3, position + 4);
                require(it.data() != nullptr, "each member of an array is there");
                ++members;
            }
            require(members == array->count(), "an iterator visits all members of an array");
            copy.append(new QtSoapSimpleType(QtSoapQName(QStringLiteral("added")), 1));
        }
    } else if (const auto* structure = dynamic_cast<const QtSoapStruct*>(&value)) {
        QtSoapStruct copy(*structure);
        int members = 0;
        for (QtSoapStructIterator it(copy); it.data(); ++it) {
            (void)it.key();
            ++members;
        }
        require(members == structure->count(), "an iterator visits all members of a struct");
        copy.insert(new QtSoapSimpleType(QtSoapQName(QStringLiteral("added")), 1));
    }
}

void readEverything(const QtSoapMessage& message)
{
    readEverything(message.method(), 0);
    readEverything(message.returnValue(), 0);
    readEverything(message.faultString(), 0);
    readEverything(message.faultDetail(), 0);
    iterate(message.method());
    iterate(message.returnValue());
    (void)message.faultCode();
}

void requireConsistentOutcome(const QtSoapMessage& message, bool isRead)
{
    require(isRead == message.errorString().isEmpty(), "an envelope is read, or there is an error");
    require(isRead || message.isFault(), "an envelope that can't be read gives a fault");
    require(isRead || message.faultString().toString() == message.errorString(),
            "the fault tells the error");
}

} // namespace

int LLVMFuzzerInitialize(int*, char***)
{
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray content = bytesOf(data, size);
    QtSoapMessage message;
    const bool isRead = message.setContent(content);
    requireConsistentOutcome(message, isRead);
    readEverything(message);

    const QString written = message.toXmlString();
    require(!written.isEmpty(), "what is read can be written");
    QtSoapMessage again;
    require(again.setContent(written.toUtf8()), "what is written can be read");
    require(again.isFault() == message.isFault(), "a fault stays a fault");
    require(again.faultCode() == message.faultCode(), "a fault keeps its code");
    require(again.toXmlString() == written, "what is written, read and written again is the same");
    require(again.setContent(message.toXmlString(2).toUtf8()), "an indented text can be read");

    // The parser of documents has no limits of its own, so it only gets what was found to be sane.
    if (!isRead)
        return 0;
    QDomDocument document;
    if (document.setContent(content, true)) {
        QtSoapMessage ofDocument;
        requireConsistentOutcome(ofDocument, ofDocument.setContent(document));
        readEverything(ofDocument);
    }
    return 0;
}

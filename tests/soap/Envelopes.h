#pragma once

#include "qtsoap.h"

#include <QByteArray>
#include <QDomDocument>
#include <QString>

/// \file
/// Documents to read, with the usual prefixes: SOAP-ENV, SOAP-ENC, xsd and xsi, and xsd1 and xsi1
/// for the schema of 2001.

inline QByteArray usualPrefixes()
{
    return " xmlns:SOAP-ENV=\"http://schemas.xmlsoap.org/soap/envelope/\""
           " xmlns:SOAP-ENC=\"http://schemas.xmlsoap.org/soap/encoding/\""
           " xmlns:xsd=\"http://www.w3.org/1999/XMLSchema\""
           " xmlns:xsi=\"http://www.w3.org/1999/XMLSchema-instance\""
           " xmlns:xsd1=\"http://www.w3.org/2001/XMLSchema\""
           " xmlns:xsi1=\"http://www.w3.org/2001/XMLSchema-instance\"";
}

/// An envelope from its start to its header or body.
inline QByteArray envelopesBegin()
{
    return "<SOAP-ENV:Envelope" + usualPrefixes()
        + " SOAP-ENV:encodingStyle=\"http://schemas.xmlsoap.org/soap/encoding/\">";
}

inline QByteArray envelope(const QByteArray& body)
{
    return envelopesBegin() + "<SOAP-ENV:Body>" + body + "</SOAP-ENV:Body></SOAP-ENV:Envelope>";
}

inline QByteArray envelope(const QByteArray& header, const QByteArray& body)
{
    return envelopesBegin() + "<SOAP-ENV:Header>" + header + "</SOAP-ENV:Header><SOAP-ENV:Body>"
        + body + "</SOAP-ENV:Body></SOAP-ENV:Envelope>";
}

/// The element that \a xml is, with the declarations of prefixes around it. Its document lives
/// until the next call on the same thread.
inline QDomElement element(const QString& xml)
{
    thread_local QDomDocument document;
    QString error;
    const QByteArray whole = "<all" + usualPrefixes() + '>' + xml.toUtf8() + "</all>";
    if (!document.setContent(whole, false, &error))
        qFatal("%s: %s", qPrintable(xml), qPrintable(error));
    return document.documentElement().firstChildElement();
}

/// Shows what is protected.
class OpenMessage : public QtSoapMessage
{
public:
    OpenMessage() = default;
    explicit OpenMessage(const QtSoapMessage& message)
        : QtSoapMessage(message)
    {}

    using QtSoapMessage::body;
    using QtSoapMessage::header;
    using QtSoapMessage::isValidSoapMessage;
    using QtSoapMessage::MessageType;
};

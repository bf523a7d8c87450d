#pragma once

#include "qtsoap.h"

#include <QString>
#include <QStringList>

/// \file
/// Values as texts, so that a table can hold them.
namespace SoapText {

inline QString ofName(const QtSoapQName& name)
{
    return name.uri().isEmpty() ? name.name()
                                : QStringLiteral("{%1}%2").arg(name.uri(), name.name());
}

inline QString ofContent(const QtSoapType& value);

inline QString ofMembers(QtSoapStruct& structure);

inline QString ofItems(QtSoapArray& array)
{
    QStringList items;
    for (QtSoapArrayIterator i(array); !i.atEnd(); ++i) {
        int position[] = {-1, -1, -1, -1, -1};
        i.pos(position, position + 1, position + 2, position + 3, position + 4);
        QStringList indices;
        for (int index : position) {
            if (index >= 0)
                indices << QString::number(index);
        }
        items << indices.join(QLatin1Char(' ')) + QStringLiteral(": ") + ofContent(*i.data());
    }
    return QStringLiteral("[%1]").arg(items.join(QStringLiteral(", ")));
}

/// The name of a type, in brackets if it isn't one of the list.
inline QString ofType(const QtSoapType& value)
{
    const QString name = value.typeName();
    return name == QtSoapType::typeToName(value.type()) ? name : QStringLiteral("(%1)").arg(name);
}

inline QString ofContent(const QtSoapType& value)
{
    if (!value.isValid())
        return QStringLiteral("invalid");
    // The iterators take what can be changed, and change nothing.
    auto& changeable = const_cast<QtSoapType&>(value);
    if (value.type() == QtSoapType::Array)
        return ofItems(dynamic_cast<QtSoapArray&>(changeable));
    if (value.type() == QtSoapType::Struct)
        return ofMembers(dynamic_cast<QtSoapStruct&>(changeable));
    const QString type = ofType(value);
    const QString text = QStringLiteral("\"%1\"").arg(value.toString());
    return type.isEmpty() ? text : type + QLatin1Char(' ') + text;
}

inline QString of(const QtSoapType& value)
{
    return ofName(value.name()) + QStringLiteral(": ") + ofContent(value);
}

inline QString ofMembers(QtSoapStruct& structure)
{
    QStringList members;
    for (QtSoapStructIterator i(structure); i.data(); ++i)
        members << of(*i.data());
    return QStringLiteral("{%1}").arg(members.join(QStringLiteral(", ")));
}

} // namespace SoapText

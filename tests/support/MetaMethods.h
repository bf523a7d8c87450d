#pragma once

#include <QMetaMethod>
#include <QMetaObject>
#include <QString>
#include <QStringList>

namespace MetaMethods {

/// A method as it is declared, such as "bool isMessageBoxShown(QString message, int number)". The
/// form that a default argument adds begins with "default".
inline QString declaration(const QMetaMethod& method)
{
    QStringList parameters;
    for (int i = 0; i < method.parameterCount(); ++i) {
        parameters << QString::fromLatin1(method.parameterTypes().at(i) + ' '
                                          + method.parameterNames().at(i));
    }
    return QStringLiteral("%1%2 %3(%4)")
        .arg(QLatin1String(method.attributes() & QMetaMethod::Cloned ? "default " : ""),
             QString::fromLatin1(method.typeName()), QString::fromLatin1(method.name()),
             parameters.join(QStringLiteral(", ")));
}

/// The declarations of \a count public slots in their order, the first of which has the signature
/// \a first. Another method between them is told as such.
inline QStringList slotDeclarations(const QMetaObject& metaObject, const char* first, int count)
{
    QStringList result;
    for (int i = metaObject.indexOfMethod(first);
         i >= 0 && i < metaObject.methodCount() && result.count() < count; ++i) {
        const QMetaMethod method = metaObject.method(i);
        const bool isPublicSlot =
            method.methodType() == QMetaMethod::Slot && method.access() == QMetaMethod::Public;
        result << QLatin1String(isPublicSlot ? "" : "no public slot: ") + declaration(method);
    }
    return result;
}

} // namespace MetaMethods

#pragma once

#include "qtsoap.h"

namespace VEK_NAMESPACE::soap {

/// Whether white space belongs to the content of the type.
bool keepsWhiteSpace(QtSoapType::Type type);

bool isWhiteSpace(QChar character);
bool isBlank(const QString& text);

/// Without white space at both ends.
QString trimmed(const QString& text);

/// Whether the text, which is trimmed, is one of the type. Types of names and URIs take any.
bool isOfType(QtSoapType::Type type, const QString& text);

/// The content, as QtSoapSimpleType documents it.
QVariant toVariant(QtSoapType::Type type, const QString& text);

/// Whole numbers of decimal digits with an optional sign; false if there is more, or too much.
bool toLongLong(const QString& text, qlonglong* value);

} // namespace VEK_NAMESPACE::soap

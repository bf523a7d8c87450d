#pragma once

#include "UtilsDllGlobal.h"

#include <QByteArray>
#include <QString>

namespace VEK_NAMESPACE {
namespace Platform {

/// Whether a file may be read as a property list: a plain one, and not larger than 128 KiB. Any
/// thread.
bool isPropertyListFile(const QString& path);

/// Whether a property list, XML, binary or of the older form, can be given to the parser, which
/// follows a list into any depth and through any number of references to the same object: no
/// container may lie deeper than a hundred others, and in a binary list none may be referred to
/// twice. Any thread.
bool isHarmlessPropertyList(const QByteArray& content);

} // namespace Platform
} // namespace VEK_NAMESPACE

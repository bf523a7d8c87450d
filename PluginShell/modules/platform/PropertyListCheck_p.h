#pragma once

#include "UtilsDllGlobal.h"

#include <QByteArray>

namespace VEK_NAMESPACE {
namespace Platform {

/// Whether a property list, XML or binary, can be given to the parser, which follows a list into
/// any depth and through any number of references to the same object: no container may lie deeper
/// than a hundred others, and in a binary list none may be referred to twice.
bool isHarmlessPropertyList(const QByteArray& content);

} // namespace Platform
} // namespace VEK_NAMESPACE

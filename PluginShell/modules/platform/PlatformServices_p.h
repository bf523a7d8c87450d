#pragma once

#include "UtilsDllGlobal.h"

#include <QString>

/// The seam: everything that the library needs from an operating system. Each backend folder
/// implements all of it; an operation is a thin call and decides nothing.
namespace VEK_NAMESPACE {
namespace Platform {

/// The folder of the product's settings, with a separator at its end. It need not exist.
QString systemFolder();

} // namespace Platform
} // namespace VEK_NAMESPACE

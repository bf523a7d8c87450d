#pragma once

#include "UtilsDllGlobal.h"

#include <QDBusConnection>

#include <optional>

namespace VEK_NAMESPACE {
namespace Platform {

/// The connection to the session bus that runs already; nothing if none does, or if it says nothing
/// for some seconds. Never starts one, which the bus library would do by itself where there is a
/// display.
std::optional<QDBusConnection> sessionBus();

} // namespace Platform
} // namespace VEK_NAMESPACE

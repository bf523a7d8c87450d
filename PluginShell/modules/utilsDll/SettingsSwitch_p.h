#pragma once

#include "Settings.h"

namespace VEK_NAMESPACE {
namespace Private {

/// Switches are stored as "1" and "0", and any text but "0" is on.

inline bool isSwitchedOn(const CSettings& settings, const QString& key)
{
    return settings.value(key, QStringLiteral("1")).toString() != QLatin1String("0");
}

inline void storeSwitch(const QString& key, bool on)
{
    CSettings(nullptr, false).setValue(key, on ? QStringLiteral("1") : QStringLiteral("0"));
}

} // namespace Private
} // namespace VEK_NAMESPACE

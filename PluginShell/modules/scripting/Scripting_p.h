#pragma once

#include "UtilsDllGlobal.h"

#include <QString>
#include <QVariant>

namespace VEK_NAMESPACE {
namespace Private {

/// The value as a report line shows it: its text, or for a value that has none what QDebug makes of
/// it.
QString qVariantToString(const QVariant& value);

} // namespace Private
} // namespace VEK_NAMESPACE

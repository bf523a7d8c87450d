#pragma once

#include "UtilsDllGlobal.h"

#include <QIcon>
#include <QString>

namespace VEK_NAMESPACE {
namespace Private {

/// The icon of an SVG file, sharp at every size, which unlike a plain QIcon of such a file reports
/// the drawing's own size as available. A file that can't be read gives a null icon.
QIcon svgIcon(const QString& fileName);

} // namespace Private
} // namespace VEK_NAMESPACE

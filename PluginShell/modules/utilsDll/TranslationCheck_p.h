#pragma once

#include "UtilsDllGlobal.h"

#include <QString>

namespace VEK_NAMESPACE {

/// Whether a translation file can be given to QTranslator, which believes every number in it and
/// follows dependencies without end: all that it refers to has to be in it, and it may not depend
/// on itself, nor on more than 100 files. \a path is what QTranslator::load() would take; if that
/// is no file the answer is no.
bool isSoundTranslation(const QString& path);

} // namespace VEK_NAMESPACE

#pragma once

#include "UtilsDllGlobal.h"

class QuaZip;

namespace VEK_NAMESPACE {

/// Whether the entry that \a zip stands at can be read: the archive library never comes back from
/// data packed with bzip2 that is cut off. Other damage it notices by itself, so the answer is yes.
bool canBeRead(QuaZip& zip);

} // namespace VEK_NAMESPACE

#pragma once

#include "utilsdll_export.h"

/// The namespace of the library's own names. Classes that hosts know by a bare name stand at global
/// scope; each header says which.
#define VEK_NAMESPACE vek

namespace VEK_NAMESPACE {}

/// Does nothing. Hosts link against it.
UTILSDLL_EXPORT void fakeCoverageThreadSafeObjectFunction();

/// \name The library's resource trees
/// Both trees are registered when the library is loaded: ":/translations/" with the messages, and
/// ":/" with style sheets and the product's data. Registering again changes nothing; a clean-up
/// takes the tree away for everybody. All four return 1. GUI thread.
/// @{
UTILSDLL_EXPORT int qInitResources_translations();
UTILSDLL_EXPORT int qCleanupResources_translations();
UTILSDLL_EXPORT int qInitResources_vek();
UTILSDLL_EXPORT int qCleanupResources_vek();
/// @}

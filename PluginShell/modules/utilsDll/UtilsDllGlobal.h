#pragma once

#include "utilsdll_export.h"

/// \file
/// What every other header stands on: the namespace, the export macro UTILSDLL_EXPORT, and the
/// functions of the resource trees.

/// The namespace of the library's own names. Classes that hosts know by a bare name stand at global
/// scope; each header says which.
#define VEK_NAMESPACE vek

/// The library's own names; each header says which threads may use them.
namespace VEK_NAMESPACE {}

/// Does nothing. Hosts link against it.
UTILSDLL_EXPORT void fakeCoverageThreadSafeObjectFunction();

/// \name The library's resource trees
/// Both trees are registered when the library is loaded: ":/translations/" with the messages, and
/// ":/" with style sheets and the product's data. Registering again changes nothing; a clean-up
/// takes the tree away for everybody. All four return 1. GUI thread.
/// @{

/// Registers ":/translations/", for a host that took it away.
UTILSDLL_EXPORT int qInitResources_translations();
/// Takes ":/translations/" away, from everybody.
UTILSDLL_EXPORT int qCleanupResources_translations();
/// Registers the tree ":/", for a host that took it away.
UTILSDLL_EXPORT int qInitResources_vek();
/// Takes style sheets, pictures, fonts and data away, from everybody.
UTILSDLL_EXPORT int qCleanupResources_vek();
/// @}

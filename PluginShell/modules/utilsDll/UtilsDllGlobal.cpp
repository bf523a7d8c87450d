#include "UtilsDllGlobal.h"

#include "CommonConstants.h"

void fakeCoverageThreadSafeObjectFunction() {}

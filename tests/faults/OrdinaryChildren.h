#pragma once

#include "OrdinaryFileRights.h"

#include <sys/prctl.h>
#include <unistd.h>

/// From now on the permissions of files hold for this process and for those that it starts, even if
/// they are root's. Called before other threads start.
inline bool takeOrdinaryFileRightsWithChildren()
{
    if (geteuid() == 0
        && (prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE, 0, 0, 0) != 0
            || prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH, 0, 0, 0) != 0)) {
        return false;
    }
    return takeOrdinaryFileRights();
}

#pragma once

#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

/// From now on the permissions of its files hold for this process even if it is root's. Called
/// before other threads start.
inline bool takeOrdinaryFileRights()
{
    __user_cap_header_struct header = {};
    header.version = _LINUX_CAPABILITY_VERSION_3;
    __user_cap_data_struct rights[2] = {};
    if (syscall(SYS_capget, &header, rights) != 0)
        return false;

    const __u32 extra = (1U << CAP_DAC_OVERRIDE) | (1U << CAP_DAC_READ_SEARCH);
    rights[0].effective &= ~extra;
    rights[0].permitted &= ~extra;
    return syscall(SYS_capset, &header, rights) == 0;
}

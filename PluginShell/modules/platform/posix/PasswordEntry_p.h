#pragma once

#include "UtilsDllGlobal.h"

#include <QString>

#include <optional>

#include <sys/types.h>

namespace VEK_NAMESPACE {
namespace Platform {

/// The home folder in a user's password entry; nothing if there is no entry. Any thread.
std::optional<QString> homeFolderOfUser(uid_t user);

} // namespace Platform
} // namespace VEK_NAMESPACE

#include "PasswordEntry_p.h"

#include "CommonConstants.h"

#include <QFile>

#include <cerrno>
#include <vector>

#include <pwd.h>

namespace VEK_NAMESPACE {
namespace Platform {

std::optional<QString> homeFolderOfUser(uid_t user)
{
    constexpr size_t largestBuffer = 1U << 20;
    std::vector<char> buffer(1024);
    passwd entry = {};
    passwd* found = nullptr;
    int error = 0;
    while ((error = getpwuid_r(user, &entry, buffer.data(), buffer.size(), &found)) != 0) {
        if (error == ERANGE && buffer.size() < largestBuffer)
            buffer.resize(buffer.size() * 2);
        else if (error != EINTR)
            return std::nullopt;
    }
    if (!found || !found->pw_dir)
        return std::nullopt;
    return QFile::decodeName(found->pw_dir);
}

} // namespace Platform
} // namespace VEK_NAMESPACE

#pragma once

#include "UtilsDllGlobal.h"

#include <QString>

#include <list>
#include <string>

namespace VEK_NAMESPACE {
namespace Private {

/// The arguments in a file that holds one a line, in UTF-8, empty lines dropped. None if the file
/// can't be read, isn't a plain file, is larger than any command line (8 MiB), or isn't UTF-8 from
/// end to end.
std::list<std::string> readArgumentsFile(const QString& path);

/// The same, and deletes the file in any case. No path stands for no arguments.
std::list<std::string> takeArgumentsFile(const QString& path);

} // namespace Private
} // namespace VEK_NAMESPACE

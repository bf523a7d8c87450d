#pragma once

#include "UtilsDllGlobal.h"

#include <QString>

#include <list>
#include <string>

class CApplicationParametersHandler_Abstract;

namespace VEK_NAMESPACE {
namespace Private {

/// The arguments in a file that holds one a line, in UTF-8, empty lines dropped. None if the file
/// can't be read, isn't a plain file, is larger than any command line (8 MiB), or isn't UTF-8 from
/// end to end.
std::list<std::string> readArgumentsFile(const QString& path);

/// What a launcher's answer is for: gives \a handler the arguments in the file, if there are any,
/// and deletes it in any case. No path stands for no arguments.
void receiveArguments(const QString& path, CApplicationParametersHandler_Abstract& handler);

} // namespace Private
} // namespace VEK_NAMESPACE

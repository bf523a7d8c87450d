#include "Logger.h"

#include "CommonConstants.h"

namespace VEK_NAMESPACE {

ILoggerInterface* g_logger = nullptr;

ILoggerTrace::~ILoggerTrace() = default;

ILoggerInterface::~ILoggerInterface() = default;

} // namespace VEK_NAMESPACE

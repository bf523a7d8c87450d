#pragma once

#include "PlatformServices_p.h"

namespace VEK_NAMESPACE {
namespace Platform {

/// \name Messages between the processes of the logged-in user
/// A message has a name and one text. Without a session bus nothing is sent and none arrives; none
/// is started.
/// @{

void postNotification(const QString& name, const QString& text);

/// Calls \a onReceived, from the event loop, for each message of that name, whichever process sent
/// it. Null without a bus.
std::unique_ptr<Observer> observeNotification(const QString& name,
                                              std::function<void(const QString&)> onReceived);

/// @}

} // namespace Platform
} // namespace VEK_NAMESPACE

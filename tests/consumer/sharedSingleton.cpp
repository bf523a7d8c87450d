#include <DelayedCall.h>

#include <QObject>

// What tells whether this host's Singleton<CDelayedCall>, which main.cpp uses, was built: its
// guard, under the name that the C++ ABI gives it.
extern "C" const char hostsGuard asm("_ZGVZN9SingletonI12CDelayedCallE8instanceEvE6object");

/// The library builds its object on its first use. If that sets the host's guard, there is one
/// object.
bool libraryAndHostShareSingletons()
{
    const volatile char& guard = hostsGuard;
    const bool builtBefore = guard != 0;
    QObject target;
    CDelayedCall::isActive(&target, "none");
    return !builtBefore && guard != 0;
}

#pragma once

#include <QtGlobal>

/// The one object of type T in the process, built on first use and destroyed at exit. Library and
/// host see the same object, hidden symbol visibility or not. First calls from several threads at
/// once build it once.
///
/// A class may derive from its own Singleton; any other default-constructible class can be reached
/// through it as well.
template <typename T>
class Q_DECL_EXPORT Singleton
{
public:
    /// The object. It stays the process's: never delete it.
    static T& instance()
    {
        static T object;
        return object;
    }

protected:
    Singleton() = default;
    ~Singleton() = default;

private:
    Q_DISABLE_COPY(Singleton)
};

#pragma once

#include <QString>

#include <utility>

/// A new widget under the name by which scripts and style sheets find it. Its owner is the parent
/// among \a args, or the layout that it is put into.
template <typename Widget, typename... Args>
Widget* named(const char* name, Args&&... args)
{
    auto* widget = new Widget(std::forward<Args>(args)...);
    widget->setObjectName(QLatin1String(name));
    return widget;
}

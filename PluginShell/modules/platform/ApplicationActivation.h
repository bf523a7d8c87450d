#pragma once

#include "UtilsDllGlobal.h"

#include <QScopedPointer>

class QWidget;

/// While it lives, an open combo box list or menu of this process closes when the application is no
/// longer active or one of its windows is minimised. An application keeps one; a second one does no
/// harm. Make it after the application object. GUI thread.
class UTILSDLL_EXPORT TopLevelWindowDeactivator
{
public:
    /// Begins to watch.
    TopLevelWindowDeactivator();
    /// Watches no longer.
    ~TopLevelWindowDeactivator();

    /// Closes what is open now. A combo box is asked to hide its list, a menu of no combo box is
    /// closed; all other top-level widgets stay.
    static void deactivateAllTopLevelWidgets();

private:
    Q_DISABLE_COPY(TopLevelWindowDeactivator)

    struct Private;
    QScopedPointer<Private> pimpl;
};

/// Brings windows of this process to the front. GUI thread.
class UTILSDLL_EXPORT WindowActivator
{
public:
    /// Whether this process is the active application.
    static bool isAppActive();

    /// Shows a window and brings it to the front, even if another application is active. Null does
    /// nothing.
    static void activate(QWidget* widget);

    /// Enables or disables the top entries of the menu bar, as MacOSEnableMenuBar() does.
    static void enableMenuBar(bool enabled);
};

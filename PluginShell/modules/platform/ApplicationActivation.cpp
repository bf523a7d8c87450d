#include "ApplicationActivation.h"

#include "CommonConstants.h"
#include "PlatformServices_p.h"

#include <QApplication>
#include <QComboBox>
#include <QPointer>

using namespace VEK_NAMESPACE;

struct Q_DECL_HIDDEN TopLevelWindowDeactivator::Private
{
    std::unique_ptr<Platform::Watch> resignObserver = Platform::observeResign();
};

TopLevelWindowDeactivator::TopLevelWindowDeactivator()
    : pimpl(new Private)
{}

TopLevelWindowDeactivator::~TopLevelWindowDeactivator() = default;

void TopLevelWindowDeactivator::deactivateAllTopLevelWidgets()
{
    // What one popup's closing sets off may delete the next one.
    QList<QPointer<QWidget>> widgets;
    const QWidgetList topLevelWidgets = QApplication::topLevelWidgets();
    for (QWidget* widget : topLevelWidgets)
        widgets << widget;

    for (const QPointer<QWidget>& widget : qAsConst(widgets)) {
        if (!widget)
            continue;
        QObject* parent = widget->parent();
        if (parent && parent->inherits("QComboBox"))
            static_cast<QComboBox*>(parent)->hidePopup();
        else if (widget->inherits("QMenu"))
            widget->close();
    }
}

bool WindowActivator::isAppActive()
{
    return Platform::isApplicationActive();
}

void WindowActivator::activate(QWidget* widget)
{
    if (!widget)
        return;
    widget->show();
    Platform::activateApplication(*widget);
    widget->activateWindow();
    widget->raise();
}

void WindowActivator::enableMenuBar(bool enabled)
{
    Platform::setMenuBarEnabled(enabled);
}

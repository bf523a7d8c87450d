#include "GuiUtils.h"

#include "Assertions.h"
#include "CommonConstants.h"
#include "PlatformServices_p.h"

#include <QApplication>
#include <QCursor>
#include <QDesktopWidget>
#include <QMenu>
#include <QMouseEvent>
#include <QScreen>
#include <QStyle>
#include <QTimer>

namespace VEK_NAMESPACE {

namespace {

QPoint centredTopLeft(const QRect& screen, const QRect& frame)
{
    return {(screen.width() - frame.width()) / 2 + screen.left(),
            (screen.height() - frame.height()) / 2 + screen.top()};
}

void sendPlainEvent(QWidget* widget, QEvent::Type type)
{
    QEvent event(type);
    QCoreApplication::sendEvent(widget, &event);
}

/// A menu takes a move into account only when it has seen the place before.
void highlightMenuUnderCursor(QMenu* menu)
{
    const QPoint position = QCursor::pos();
    QMouseEvent move(QEvent::MouseMove, menu->mapFromGlobal(position), position, Qt::NoButton,
                     QGuiApplication::mouseButtons(), QGuiApplication::keyboardModifiers());
    QCoreApplication::sendEvent(menu, &move);
    QCoreApplication::sendEvent(menu, &move);
    if (menu->activeAction() && menu->activeAction()->isSeparator())
        menu->setActiveAction(nullptr);
}

} // namespace

void moveWindowToScreenCenter(QWidget* window, QWidget* parent)
{
    if (!window || !window->isWindow()) {
        ASSERT_X(false, QStringLiteral("Bug!!!"));
        return;
    }
    QDesktopWidget* desktop = QApplication::desktop();
    if (!desktop) {
        ASSERT_X(false, QStringLiteral("desktop is unavailable"));
        return;
    }

    const QRect screen = parent ? desktop->screenGeometry(parent) : desktop->screenGeometry(-1);
    ASSERT_X(!parent || screen.isValid(), QStringLiteral("wrong screen geometry of parent widget"));
    if (screen.isValid())
        window->move(centredTopLeft(screen, window->frameGeometry()));

    QTimer::singleShot(0, window, [window] {
        if (const WId id = window->winId()) {
            Platform::setWindowLevel(id, Platform::WindowLevel::ModalPanel);
            Platform::orderWindowFront(id);
        }
    });
}

void setWidgetFullTransparency(QWidget* widget)
{
    if (!widget)
        return;

    QPalette palette = widget->palette();
    for (const QPalette::ColorRole role :
         {QPalette::Window, QPalette::Button, QPalette::Base, QPalette::Light, QPalette::Midlight,
          QPalette::Dark, QPalette::Mid, QPalette::Shadow}) {
        palette.setBrush(QPalette::All, role, QBrush(Qt::transparent, Qt::SolidPattern));
    }
    widget->setPalette(palette);
}

double systemScalingFactor()
{
    // Not a ratio, and fixed for the process's life; both are meant.
    static const double scalingFactor = [] {
        double highest = 1.0;
        const auto screens = QGuiApplication::screens();
        for (const QScreen* screen : screens)
            highest = qMax(highest, double(screen->logicalDotsPerInch()));
        return highest;
    }();
    return scalingFactor;
}

void enableWindowCloseButton(unsigned long long winId, bool enable)
{
    if (winId)
        Platform::setCloseButtonEnabled(winId, enable);
}

void flickHoverEvent(QWidget* widget)
{
    if (!widget || QCoreApplication::startingUp() || !QApplication::activeWindow())
        return;

    const QPoint position = QCursor::pos();
    if (!widget->rect().contains(widget->mapFromGlobal(position))) {
        sendPlainEvent(widget, QEvent::Leave);
        widget->update();
        return;
    }

    QCursor::setPos(position.x() + 1, position.y() + 1);
    QCursor::setPos(position.x(), position.y());
    sendPlainEvent(widget, QEvent::Leave);
    sendPlainEvent(widget, QEvent::Enter);
    synthesizeMouseEvent(widget, position);
    if (QMenu* menu = qobject_cast<QMenu*>(widget))
        highlightMenuUnderCursor(menu);
    widget->update();
}

void synthesizeMouseEvent(QWidget* widget, const QPoint& globalPos)
{
    if (!widget)
        return;

    QMouseEvent move(QEvent::MouseMove, widget->mapFromGlobal(globalPos), globalPos, Qt::NoButton,
                     Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(widget, &move);
}

void reapplyWidgetQss(QWidget& widget)
{
    QStyle* style = widget.style();
    if (!style)
        return;
    style->unpolish(&widget);
    style->polish(&widget);
    widget.update();
}

} // namespace VEK_NAMESPACE

QPixmap toolCursorPixmap(ToolCursorType type)
{
    static const char* const names[] = {
        "arrow_diagonal_left", "arrow_diagonal_right", "arrow_horizontal", "arrow_square",
        "arrow_vertical",      "rotation_top",         "rotation_bottom"};
    const int index = int(type);
    if (index < 0 || index >= int(sizeof names / sizeof *names)) {
        ASSERT_X(false, QStringLiteral("Bug!!!"));
        return {};
    }
    const QIcon icon(
        QStringLiteral(":/icons/cursors/cusors_%1.svg").arg(QLatin1String(names[index])));
    return icon.pixmap(QSize(23, 24), QIcon::Normal, QIcon::Off);
}

void paintIcon(QPainter* painter, QIcon const& icon, QRect const& rect, Qt::AspectRatioMode mode,
               QIcon::Mode iconMode, QIcon::State iconState)
{
    if (!painter || icon.isNull())
        return;

    QRect target = rect;
    if (mode != Qt::IgnoreAspectRatio) {
        target.setSize(sizeOfIcon(icon, iconMode, iconState).scaled(rect.size(), mode));
        target.moveCenter(rect.center());
    }
    icon.paint(painter, target, Qt::AlignCenter, iconMode, iconState);
}

QSize sizeOfIcon(QIcon const& icon, QIcon::Mode mode, QIcon::State state)
{
    QSize largest(0, 0);
    const QList<QSize> sizes = icon.availableSizes(mode, state);
    for (const QSize& size : sizes)
        largest = largest.expandedTo(size);
    return largest;
}

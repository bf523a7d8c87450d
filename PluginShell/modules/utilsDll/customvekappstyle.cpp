#include "customvekappstyle.h"

#include "Assertions.h"
#include "CommonConstants.h"

#include <QGuiApplication>
#include <QHash>
#include <QPixmap>
#include <QStyleFactory>
#include <QStyleOption>
#include <QTreeView>

#include <algorithm>

namespace VEK_NAMESPACE {

namespace {

// clang-format off
const char* const newPixmapForToolbarExt[] = {
    "8 5 3 1",
    "            c None",
    ".            c #808080",
    "+            c none",
    "..++..++",
    "+..++..+",
    "++..++..",
    "+..++..+",
    "..++..++"};
// clang-format on

QPixmap mirroredToolbarExtension()
{
    const QImage image = QImage(newPixmapForToolbarExt).convertToFormat(QImage::Format_ARGB32);
    return QPixmap::fromImage(image.mirrored(true, false));
}

/// The whole rectangle of that size less its four corner pixels.
QRegion withoutCorners(int width, int height)
{
    return QRegion(1, 1, width - 2, height - 2) + QRegion(0, 1, width, height - 2)
        + QRegion(1, 0, width - 2, height);
}

bool isRightToLeft(const QStyleOption* option)
{
    return (option ? option->direction : QGuiApplication::layoutDirection()) == Qt::RightToLeft;
}

} // namespace

struct Q_DECL_HIDDEN CustomVekAppStyle::pimpl
{
    bool disableButtonShift(QObject const* object, bool disable);
    int buttonShift(const CustomVekAppStyle& style, PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const;

    QPixmap toolbarExtPixmap{newPixmapForToolbarExt};
    QHash<QString, QObject const*> nonShiftedButtons;
};

/// True if the table has changed.
bool CustomVekAppStyle::pimpl::disableButtonShift(QObject const* object, bool disable)
{
    if (!object)
        return false;

    const auto found = nonShiftedButtons.find(object->objectName());
    const bool isRegistered = found != nonShiftedButtons.end();
    if (isRegistered == disable)
        return false;

    if (disable) {
        nonShiftedButtons.insert(object->objectName(), object);
        return true;
    }
    ASSERT(found.value() == object);
    nonShiftedButtons.erase(found); // another's entry, too, which is meant
    return true;
}

/// A function of its own, as all other metrics would pay for its stack frame.
Q_NEVER_INLINE int CustomVekAppStyle::pimpl::buttonShift(const CustomVekAppStyle& style,
                                                         PixelMetric metric,
                                                         const QStyleOption* option,
                                                         const QWidget* widget) const
{
    if (widget) {
        const QString name = widget->objectName();
        // The property counts by being there, even with the value false.
        if (!name.isEmpty()
            && (nonShiftedButtons.contains(name)
                || widget->property("disableButtonShiftProperty").isValid()))
            return 0;
    }
    return style.QProxyStyle::pixelMetric(metric, option, widget);
}

CustomVekAppStyle::CustomVekAppStyle()
    : m_pimpl(new pimpl)
{
    setBaseStyle(QStyleFactory::create(QStringLiteral("Windows")));
}

CustomVekAppStyle::~CustomVekAppStyle()
{
    delete m_pimpl;
}

void CustomVekAppStyle::disableButtonShift(QWidget const* widget, bool disable)
{
    if (!widget)
        return;
    ASSERT(!widget->objectName().isEmpty());
    if (!m_pimpl->disableButtonShift(widget, disable))
        return;

    if (!disable) {
        QObject::disconnect(widget, nullptr, this, nullptr);
        return;
    }
    connect(widget, &QObject::destroyed, this, &CustomVekAppStyle::onNonShiftedButtonDestroy);
    connect(widget, &QObject::objectNameChanged, this,
            &CustomVekAppStyle::onNonShiftedButtonObjectNameChanged);
}

void CustomVekAppStyle::onNonShiftedButtonDestroy(QObject* p)
{
    m_pimpl->disableButtonShift(p, false);
}

void CustomVekAppStyle::onNonShiftedButtonObjectNameChanged(
    QString strNewName) // NOLINT(performance-unnecessary-value-param)
{
    const auto* widget = qobject_cast<QWidget const*>(sender());
    if (!widget)
        return;

    // The entry still has the old name.
    auto& buttons = m_pimpl->nonShiftedButtons;
    const auto entry = std::find(buttons.begin(), buttons.end(), widget);
    if (entry == buttons.end()) {
        ASSERT(false);
        return;
    }
    buttons.erase(entry);
    QObject::disconnect(widget, nullptr, this, nullptr);
    if (!strNewName.isEmpty())
        disableButtonShift(widget, true);
}

void CustomVekAppStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                      QPainter* painter, const QWidget* widget) const
{
    if (element != PE_FrameFocusRect && element != PE_IndicatorMenuCheckMark)
        QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void CustomVekAppStyle::drawControl(ControlElement element, const QStyleOption* option,
                                    QPainter* painter, const QWidget* widget) const
{
    QProxyStyle::drawControl(element, option, painter, widget);
}

int CustomVekAppStyle::pixelMetric(PixelMetric metric, const QStyleOption* option,
                                   const QWidget* widget) const
{
    if (Q_UNLIKELY(metric == PM_ButtonShiftHorizontal || metric == PM_ButtonShiftVertical))
        return m_pimpl->buttonShift(*this, metric, option, widget);
    return QProxyStyle::pixelMetric(metric, option, widget);
}

int CustomVekAppStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                                 QStyleHintReturn* returnData) const
{
    switch (hint) {
    case SH_EtchDisabledText:
    case SH_Menu_AllowActiveAndDisabled:
        return 0;
    case SH_ProgressDialog_CenterCancelButton:
    case SH_ComboBox_ListMouseTracking:
    case SH_Menu_MouseTracking:
    case SH_MenuBar_MouseTracking:
        return 1;
    case SH_Slider_AbsoluteSetButtons:
        return Qt::LeftButton;
    case SH_ToolTip_Mask:
        if (auto* mask = option ? qstyleoption_cast<QStyleHintReturnMask*>(returnData) : nullptr) {
            // Placed at the origin, wherever the option's rectangle is; that is meant.
            mask->region = withoutCorners(option->rect.width(), option->rect.height());
            return 1;
        }
        break;
    case SH_ItemView_PaintAlternatingRowColorsForEmptyArea:
        if (qobject_cast<const QTreeView*>(widget))
            return 0;
        break;
    default:
        break;
    }
    return QProxyStyle::styleHint(hint, option, widget, returnData);
}

QPixmap CustomVekAppStyle::standardPixmap(StandardPixmap pixmap, const QStyleOption* option,
                                          const QWidget* widget) const
{
    if (pixmap != SP_ToolBarHorizontalExtensionButton)
        return QProxyStyle::standardPixmap(pixmap, option, widget);
    if (!isRightToLeft(option))
        return m_pimpl->toolbarExtPixmap;

    static const QPixmap rtl_toolBarHorizontalExtensionButton = mirroredToolbarExtension();
    return rtl_toolBarHorizontalExtensionButton;
}

} // namespace VEK_NAMESPACE

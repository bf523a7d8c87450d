#pragma once

#include "UtilsDllGlobal.h"

#include <QProxyStyle>

namespace VEK_NAMESPACE {

/// The application's style: Qt's "Windows" style on every platform, flattened in a few details, as
/// the ground for the style sheets (see setPredefinedAppStyleSheet()). A host installs it with
/// QApplication::setStyle() before it sets a sheet. GUI thread.
///
/// What differs from its base: no focus rectangles, no check marks in menus, no etched texts, a
/// slider that jumps to a left click, tool tips with cut corners, a grey tool bar extension arrow
/// that follows the layout's direction, and push buttons that may keep their contents in place when
/// pressed: those registered with disableButtonShift(), and those that have an object name and the
/// dynamic property "disableButtonShiftProperty", whatever its value.
class UTILSDLL_EXPORT CustomVekAppStyle : public QProxyStyle
{
    Q_OBJECT

public:
    /// QApplication::setStyle() takes the object over.
    CustomVekAppStyle();
    ~CustomVekAppStyle() override;

    /// Registers a button to keep its contents in place when pressed, or removes it. The register
    /// goes by object names: the first button of a name holds it, and all others of that name are
    /// treated alike for as long as it lives. A button without a name fails an assertion and
    /// goes on shifting.
    void disableButtonShift(QWidget const* widget, bool disable = true);

    /// Draws no focus rectangles and no check marks of menus.
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget = nullptr) const override;

    /// As the base style does.
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget = nullptr) const override;

    /// Gives 0 for both directions of the button shift of a button that keeps its contents in
    /// place.
    int pixelMetric(PixelMetric metric, const QStyleOption* option = nullptr,
                    const QWidget* widget = nullptr) const override;

    /// Answers these by itself, and everything else as the base style does: no etched texts, no
    /// active and disabled entries in menus, centred buttons in progress dialogs, lists and menus
    /// that follow the mouse, a left click that sets a slider, the mask of tool tips, and no
    /// alternating rows below the last one of a tree.
    int styleHint(StyleHint hint, const QStyleOption* option = nullptr,
                  const QWidget* widget = nullptr,
                  QStyleHintReturn* returnData = nullptr) const override;

    /// Gives the extension arrow of tool bars, 8 by 5 pixels, mirrored for layouts that run from
    /// right to left.
    QPixmap standardPixmap(StandardPixmap pixmap, const QStyleOption* option,
                           const QWidget* widget = nullptr) const override;

private Q_SLOTS:
    void onNonShiftedButtonDestroy(QObject* p);
    void onNonShiftedButtonObjectNameChanged(
        QString strNewName); // clazy:exclude=function-args-by-ref

private:
    struct pimpl;
    pimpl* m_pimpl;
};

} // namespace VEK_NAMESPACE

// The handles on the picture, dragged by a mouse, and the grid that is drawn over it. The view has
// a fixed size, so that a picture of 60 by 40 always lies at (32, 32) with 600 by 400.

#include "CorrectionHandles.h"
#include "GuiUtils.h"
#include "MainWindow.h"
#include "PictureView.h"
#include "Settings.h"
#include "TemporarySettings.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QCursor>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QSignalSpy>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

using VEK_NAMESPACE::CSettings;
using VEK_NAMESPACE::CTemporarySettings;
using Handle = CorrectionHandles::Handle;

Q_DECLARE_METATYPE(CorrectionHandles::Handle)
Q_DECLARE_METATYPE(Qt::MouseButton)
Q_DECLARE_METATYPE(ToolCursorType)
Q_DECLARE_METATYPE(QList<int>)

namespace {

constexpr Handle allHandles[] = {Handle::LineStart,  Handle::LineEnd,    Handle::LineMiddle,
                                 Handle::TurnTop,    Handle::TurnBottom, Handle::Left,
                                 Handle::Right,      Handle::TopLeft,    Handle::TopRight,
                                 Handle::BottomLeft, Handle::BottomRight};

constexpr ToolCursorType allCursors[] = {ToolCursorArrowDiagonalLeft, ToolCursorArrowDiagonalRight,
                                         ToolCursorArrowHorizontal,   ToolCursorArrowSquare,
                                         ToolCursorArrowVertical,     ToolCursorRotationTop,
                                         ToolCursorRotationBottom};

/// Where the level line's ends are as long as nobody has moved them.
const QPointF restingStart(182, 232);
const QPointF restingEnd(482, 232);

void sendMouse(QWidget* widget, QEvent::Type type, const QPointF& position, Qt::MouseButton button,
               Qt::MouseButtons buttons)
{
    QMouseEvent event(type, position, widget->mapToGlobal(position.toPoint()), button, buttons,
                      Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
}

void press(QWidget* widget, const QPointF& position, Qt::MouseButton button = Qt::LeftButton)
{
    sendMouse(widget, QEvent::MouseButtonPress, position, button, button);
}

void move(QWidget* widget, const QPointF& position, Qt::MouseButtons buttons = Qt::LeftButton)
{
    sendMouse(widget, QEvent::MouseMove, position, Qt::NoButton, buttons);
}

void release(QWidget* widget, const QPointF& position, Qt::MouseButton button = Qt::LeftButton)
{
    sendMouse(widget, QEvent::MouseButtonRelease, position, button, Qt::NoButton);
}

void hover(QWidget* widget, const QPointF& position)
{
    move(widget, position, Qt::NoButton);
}

void drag(QWidget* widget, const QPointF& from, const QPointF& to,
          Qt::MouseButton button = Qt::LeftButton)
{
    press(widget, from, button);
    for (int i = 1; i <= 4; ++i)
        move(widget, from + (to - from) * i / 4.0, button);
    release(widget, to, button);
}

QImage cursorImage(const QWidget* widget)
{
    return widget->cursor().pixmap().toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

QImage toolCursorImage(ToolCursorType type)
{
    return toolCursorPixmap(type).toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

/// Where a column or a row of a picture of a white and a black half changes from light to dark or
/// back, between two pixels; -1 if it doesn't.
double edgeInColumn(const QImage& image, int x, int from, int to)
{
    for (int y = from; y < to; ++y) {
        const int a = qGray(image.pixel(x, y)) - 128;
        const int b = qGray(image.pixel(x, y + 1)) - 128;
        if ((a < 0) != (b < 0))
            return y + double(a) / (a - b);
    }
    return -1.0;
}

double edgeInRow(const QImage& image, int y, int from, int to)
{
    return edgeInColumn(image.transformed(QTransform(0, 1, 1, 0, 0, 0)), y, from, to);
}

bool isFinite(const QPointF& point)
{
    return std::isfinite(point.x()) && std::isfinite(point.y());
}

} // namespace

class tst_CorrectionHandles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void lie_on_the_picture_data();
    void lie_on_the_picture();
    void show_the_cursor_of_what_they_do_data();
    void show_the_cursor_of_what_they_do();
    void all_tool_cursors_occur_and_differ();
    void the_cursor_goes_with_the_handle();
    void the_handle_under_the_mouse_is_lit();

    void a_drag_moves_one_slider_data();
    void a_drag_moves_one_slider();
    void a_drag_adds_to_what_is_there();
    void a_drag_there_and_back_changes_nothing();
    void a_drag_is_one_undo_step_data();
    void a_drag_is_one_undo_step();
    void a_drag_keeps_what_it_does_not_mend();

    void the_line_levels_the_picture_data();
    void the_line_levels_the_picture();
    void what_the_line_was_laid_along_is_level_data();
    void what_the_line_was_laid_along_is_level();
    void the_line_turns_only_when_it_is_released();
    void the_line_stays_on_the_picture_data();
    void the_line_stays_on_the_picture();
    void the_middle_moves_the_line_and_corrects_nothing();

    void another_button_does_nothing_data();
    void another_button_does_nothing();
    void another_button_does_not_end_a_drag();
    void without_a_handle_there_is_no_drag_data();
    void without_a_handle_there_is_no_drag();

    void are_hidden_without_a_picture();
    void follow_their_action_and_are_remembered();
    void start_as_they_were_left_data();
    void start_as_they_were_left();
    void hidden_during_a_drag_they_have_let_go();
    void a_picture_that_is_opened_during_a_drag_stays_as_it_is();

    void a_frame_without_a_size_does_no_harm_data();
    void a_frame_without_a_size_does_no_harm();
    void a_window_that_is_resized_during_a_drag_does_no_harm_data();
    void a_window_that_is_resized_during_a_drag_does_no_harm();

    void the_grid_lies_on_the_picture_only_data();
    void the_grid_lies_on_the_picture_only();
    void the_grid_is_a_veil_of_white();
    void the_grid_is_the_same_in_the_window();

private:
    template <typename T>
    T* child(const char* name) const
    {
        T* found = m_window->findChild<T*>(QLatin1String(name));
        Q_ASSERT(found);
        return found;
    }
    void makeWindow();
    bool openPicture(const QImage& picture);
    QList<int> sliderValues() const
    {
        return {child<QSlider>("horizonSlider")->value(),
                child<QSlider>("distortionSlider")->value(),
                child<QSlider>("keystoneSlider")->value()};
    }

    QTemporaryDir m_pictures;
    std::unique_ptr<CTemporarySettings> m_settings;
    std::unique_ptr<MainWindow> m_window;
    CorrectionHandles* m_handles = nullptr;
    PictureView* m_view = nullptr;
    QAction* m_undo = nullptr;
};

void tst_CorrectionHandles::initTestCase()
{
    QVERIFY(m_pictures.isValid());
    // Away from the window, so that no event of the real mouse comes between.
    QCursor::setPos(0, 0);
}

void tst_CorrectionHandles::init()
{
    m_settings = std::make_unique<CTemporarySettings>(nullptr);
    CSettings::setTemporarySettings(*m_settings);
    makeWindow();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    QImage picture(60, 40, QImage::Format_RGB32);
    picture.fill(QColor(0, 128, 0));
    QVERIFY(openPicture(picture));
    child<QAction>("actionHandles")->setChecked(true);
    QVERIFY(m_handles->isVisible());
    QCOMPARE(m_view->frame(), QRectF(32, 32, 600, 400));
}

void tst_CorrectionHandles::cleanup()
{
    m_window.reset();
    CSettings::removeTemporarySettings();
    m_settings.reset();
}

void tst_CorrectionHandles::makeWindow()
{
    m_window = std::make_unique<MainWindow>();
    m_view = child<PictureView>("pictureView");
    m_handles = child<CorrectionHandles>("handles");
    m_undo = child<QAction>("actionUndo");
    m_view->setFixedSize(664, 464);
    m_window->move(200, 100);
    m_window->show();
    QCoreApplication::processEvents();
}

bool tst_CorrectionHandles::openPicture(const QImage& picture)
{
    const QString path = m_pictures.filePath(QStringLiteral("picture.png"));
    return picture.save(path) && m_window->openPicture(path);
}

void tst_CorrectionHandles::lie_on_the_picture_data()
{
    QTest::addColumn<Handle>("handle");
    QTest::addColumn<QPointF>("position");
    QTest::newRow("start of the line") << Handle::LineStart << QPointF(182, 232);
    QTest::newRow("end of the line") << Handle::LineEnd << QPointF(482, 232);
    QTest::newRow("middle of the line") << Handle::LineMiddle << QPointF(332, 232);
    QTest::newRow("top") << Handle::TurnTop << QPointF(332, 52);
    QTest::newRow("bottom") << Handle::TurnBottom << QPointF(332, 412);
    QTest::newRow("left") << Handle::Left << QPointF(52, 232);
    QTest::newRow("right") << Handle::Right << QPointF(612, 232);
    QTest::newRow("top left") << Handle::TopLeft << QPointF(52, 52);
    QTest::newRow("top right") << Handle::TopRight << QPointF(612, 52);
    QTest::newRow("bottom left") << Handle::BottomLeft << QPointF(52, 412);
    QTest::newRow("bottom right") << Handle::BottomRight << QPointF(612, 412);
}

void tst_CorrectionHandles::lie_on_the_picture()
{
    QFETCH(Handle, handle);
    QFETCH(QPointF, position);
    QCOMPARE(m_handles->geometry(), m_view->rect());
    QCOMPARE(m_handles->position(handle), position);

    // A grip of 18 pixels is painted there.
    const QImage with = m_view->grab().toImage();
    m_handles->hide();
    const QImage without = m_view->grab().toImage();
    const QPoint middle = position.toPoint();
    int painted = 0;
    for (int y = -9; y < 9; ++y) {
        for (int x = -9; x < 9; ++x) {
            const QPoint pixel = middle + QPoint(x, y);
            painted += with.pixel(pixel) != without.pixel(pixel);
        }
    }
    QVERIFY2(painted > 100, qPrintable(QString::number(painted)));
}

void tst_CorrectionHandles::show_the_cursor_of_what_they_do_data()
{
    QTest::addColumn<QPointF>("position");
    QTest::addColumn<ToolCursorType>("cursor");
    QTest::newRow("start of the line") << QPointF(182, 232) << ToolCursorArrowVertical;
    QTest::newRow("end of the line") << QPointF(482, 232) << ToolCursorArrowVertical;
    QTest::newRow("middle of the line") << QPointF(332, 232) << ToolCursorArrowSquare;
    QTest::newRow("top") << QPointF(332, 52) << ToolCursorRotationTop;
    QTest::newRow("bottom") << QPointF(332, 412) << ToolCursorRotationBottom;
    QTest::newRow("left") << QPointF(52, 232) << ToolCursorArrowHorizontal;
    QTest::newRow("right") << QPointF(612, 232) << ToolCursorArrowHorizontal;
    QTest::newRow("top left") << QPointF(52, 52) << ToolCursorArrowDiagonalLeft;
    QTest::newRow("top right") << QPointF(612, 52) << ToolCursorArrowDiagonalRight;
    QTest::newRow("bottom left") << QPointF(52, 412) << ToolCursorArrowDiagonalRight;
    QTest::newRow("bottom right") << QPointF(612, 412) << ToolCursorArrowDiagonalLeft;
}

void tst_CorrectionHandles::show_the_cursor_of_what_they_do()
{
    QFETCH(QPointF, position);
    QFETCH(ToolCursorType, cursor);
    QVERIFY(!m_handles->testAttribute(Qt::WA_SetCursor));

    hover(m_handles, position);
    QCOMPARE(cursorImage(m_handles).size(), QSize(23, 24));
    QCOMPARE(cursorImage(m_handles), toolCursorImage(cursor));
    QCOMPARE(m_handles->cursor().hotSpot(), QPoint(11, 12));

    // It stays while the mouse drags, wherever that goes.
    press(m_handles, position);
    move(m_handles, position + QPointF(40, -30));
    QCOMPARE(cursorImage(m_handles), toolCursorImage(cursor));
}

void tst_CorrectionHandles::all_tool_cursors_occur_and_differ()
{
    std::vector<QImage> seen;
    for (const Handle handle : allHandles) {
        hover(m_handles, m_handles->position(handle));
        const QImage image = cursorImage(m_handles);
        if (std::find(seen.begin(), seen.end(), image) == seen.end())
            seen.push_back(image);
    }
    QCOMPARE(seen.size(), size_t(7));
    for (const ToolCursorType cursor : allCursors)
        QVERIFY(std::find(seen.begin(), seen.end(), toolCursorImage(cursor)) != seen.end());
}

void tst_CorrectionHandles::the_cursor_goes_with_the_handle()
{
    hover(m_handles, QPointF(52, 52));
    QVERIFY(m_handles->testAttribute(Qt::WA_SetCursor));
    hover(m_handles, QPointF(132, 132));
    QVERIFY(!m_handles->testAttribute(Qt::WA_SetCursor));

    hover(m_handles, QPointF(52, 52));
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(m_handles, &leave);
    QVERIFY(!m_handles->testAttribute(Qt::WA_SetCursor));

    // Let go far from any handle, a drag takes its cursor along.
    drag(m_handles, QPointF(52, 232), QPointF(112, 162));
    QVERIFY(!m_handles->testAttribute(Qt::WA_SetCursor));
}

void tst_CorrectionHandles::the_handle_under_the_mouse_is_lit()
{
    const QRect left(43, 223, 18, 18);
    const QRect right(603, 223, 18, 18);
    const QImage idle = m_handles->grab().toImage();
    hover(m_handles, QPointF(52, 232));
    const QImage lit = m_handles->grab().toImage();
    QVERIFY(lit.copy(left) != idle.copy(left));
    QCOMPARE(lit.copy(right), idle.copy(right));

    hover(m_handles, QPointF(132, 132));
    QCOMPARE(m_handles->grab().toImage(), idle);
}

void tst_CorrectionHandles::a_drag_moves_one_slider_data()
{
    QTest::addColumn<QPointF>("from");
    QTest::addColumn<QPointF>("way");
    QTest::addColumn<QList<int>>("values"); // horizon in tenths of a degree, distortion, keystone

    const QPointF top(332, 52);
    QTest::newRow("top to the right turns clockwise")
        << top << QPointF(18, 0) << QList<int>{57, 0, 0};
    QTest::newRow("top to the left turns the other way")
        << top << QPointF(-18, 0) << QList<int>{-57, 0, 0};
    QTest::newRow("top upwards turns nothing") << top << QPointF(0, -20) << QList<int>{0, 0, 0};
    QTest::newRow("top far to the right ends at 15 degrees")
        << top << QPointF(200, 0) << QList<int>{150, 0, 0};
    QTest::newRow("top round the left side ends at 15 degrees the other way")
        << top << QPointF(-200, 190) << QList<int>{-150, 0, 0};

    const QPointF bottom(332, 412);
    QTest::newRow("bottom to the left turns clockwise")
        << bottom << QPointF(-18, 0) << QList<int>{57, 0, 0};
    QTest::newRow("bottom to the right turns the other way")
        << bottom << QPointF(18, 0) << QList<int>{-57, 0, 0};
    QTest::newRow("bottom round the left side ends at 15 degrees")
        << bottom << QPointF(-200, -190) << QList<int>{150, 0, 0};

    const QPointF left(52, 232);
    QTest::newRow("left outwards") << left << QPointF(-30, 0) << QList<int>{0, 0, 10};
    QTest::newRow("left inwards") << left << QPointF(30, 0) << QList<int>{0, 0, -10};
    QTest::newRow("left downwards does nothing") << left << QPointF(0, 50) << QList<int>{0, 0, 0};
    QTest::newRow("left to the very right ends at 100")
        << left << QPointF(560, 0) << QList<int>{0, 0, -100};

    const QPointF right(612, 232);
    QTest::newRow("right outwards") << right << QPointF(30, 0) << QList<int>{0, 0, 10};
    QTest::newRow("right inwards") << right << QPointF(-30, 0) << QList<int>{0, 0, -10};
    QTest::newRow("right out of the window ends at 100")
        << right << QPointF(2000, 0) << QList<int>{0, 0, 100};

    // 33.3 or 99.9 of the 360.6 pixels from the middle to a corner of the picture, twice.
    QTest::newRow("top left outwards")
        << QPointF(52, 52) << QPointF(-28, -18) << QList<int>{0, 18, 0};
    QTest::newRow("top left inwards")
        << QPointF(52, 52) << QPointF(84, 54) << QList<int>{0, -55, 0};
    QTest::newRow("top right outwards")
        << QPointF(612, 52) << QPointF(28, -18) << QList<int>{0, 18, 0};
    QTest::newRow("top right inwards")
        << QPointF(612, 52) << QPointF(-84, 54) << QList<int>{0, -55, 0};
    QTest::newRow("bottom left outwards")
        << QPointF(52, 412) << QPointF(-28, 18) << QList<int>{0, 18, 0};
    QTest::newRow("bottom left inwards")
        << QPointF(52, 412) << QPointF(84, -54) << QList<int>{0, -55, 0};
    QTest::newRow("bottom right outwards")
        << QPointF(612, 412) << QPointF(28, 18) << QList<int>{0, 18, 0};
    QTest::newRow("bottom right inwards")
        << QPointF(612, 412) << QPointF(-84, -54) << QList<int>{0, -55, 0};
    QTest::newRow("bottom right out of the window ends at 100")
        << QPointF(612, 412) << QPointF(900, 700) << QList<int>{0, 100, 0};
    QTest::newRow("bottom right to the middle ends at 100 below")
        << QPointF(612, 412) << QPointF(-280, -180) << QList<int>{0, -100, 0};

    QTest::newRow("taken 12 pixels beside its middle")
        << QPointF(612, 244) << QPointF(30, 0) << QList<int>{0, 0, 10};
}

void tst_CorrectionHandles::a_drag_moves_one_slider()
{
    QFETCH(QPointF, from);
    QFETCH(QPointF, way);
    QFETCH(QList<int>, values);

    // The slider follows each move.
    press(m_handles, from);
    QCOMPARE(sliderValues(), (QList<int>{0, 0, 0}));
    move(m_handles, from + way);
    QCOMPARE(sliderValues(), values);
    release(m_handles, from + way);
    QCOMPARE(sliderValues(), values);
    QVERIFY(child<QCheckBox>("autoCropCheckBox")->isChecked());

    // And the picture follows the slider.
    QCOMPARE(m_view->angle(), values.first() / 10.0);
}

void tst_CorrectionHandles::a_drag_adds_to_what_is_there()
{
    child<QSlider>("horizonSlider")->setValue(20);
    child<QSlider>("keystoneSlider")->setValue(-40);
    drag(m_handles, QPointF(332, 52), QPointF(350, 52));
    QCOMPARE(sliderValues(), (QList<int>{77, 0, -40}));
    drag(m_handles, QPointF(612, 232), QPointF(582, 232));
    QCOMPARE(sliderValues(), (QList<int>{77, 0, -50}));

    // Two drags of one handle, too: it is back in its place after each.
    drag(m_handles, QPointF(612, 232), QPointF(582, 232));
    QCOMPARE(sliderValues(), (QList<int>{77, 0, -60}));
}

void tst_CorrectionHandles::a_drag_there_and_back_changes_nothing()
{
    const QPointF from(612, 232);
    press(m_handles, from);
    move(m_handles, from + QPointF(2000, 0));
    QCOMPARE(sliderValues(), (QList<int>{0, 0, 100}));
    move(m_handles, from + QPointF(30, 0));
    QCOMPARE(sliderValues(), (QList<int>{0, 0, 10}));
    move(m_handles, from);
    release(m_handles, from);
    QCOMPARE(sliderValues(), (QList<int>{0, 0, 0}));
    QVERIFY(!m_undo->isEnabled());
    QVERIFY(!m_window->isWindowModified());
}

void tst_CorrectionHandles::a_drag_is_one_undo_step_data()
{
    QTest::addColumn<QPointF>("from");
    QTest::addColumn<QPointF>("to");
    QTest::newRow("turned at the top") << QPointF(332, 52) << QPointF(350, 52);
    QTest::newRow("keystone at the left") << QPointF(52, 232) << QPointF(92, 232);
    QTest::newRow("distortion at a corner") << QPointF(52, 52) << QPointF(92, 92);
    QTest::newRow("levelled along the line") << QPointF(482, 232) << QPointF(482, 262);
}

void tst_CorrectionHandles::a_drag_is_one_undo_step()
{
    QFETCH(QPointF, from);
    QFETCH(QPointF, to);

    press(m_handles, from);
    for (int i = 1; i <= 10; ++i)
        move(m_handles, from + (to - from) * i / 10.0);
    QVERIFY(!m_undo->isEnabled());
    release(m_handles, to);
    const QList<int> values = sliderValues();
    QVERIFY(values != (QList<int>{0, 0, 0}));
    QVERIFY(m_undo->isEnabled());
    QVERIFY(m_window->isWindowModified());

    drag(m_handles, QPointF(612, 412), QPointF(640, 430));
    QVERIFY(sliderValues() != values);
    m_undo->trigger();
    QCOMPARE(sliderValues(), values);
    m_undo->trigger();
    QCOMPARE(sliderValues(), (QList<int>{0, 0, 0}));
    QVERIFY(!m_undo->isEnabled());
}

void tst_CorrectionHandles::a_drag_keeps_what_it_does_not_mend()
{
    child<QCheckBox>("autoCropCheckBox")->click();
    child<QSlider>("distortionSlider")->setValue(33);
    drag(m_handles, QPointF(332, 52), QPointF(350, 52));
    QCOMPARE(sliderValues(), (QList<int>{57, 33, 0}));
    QVERIFY(!child<QCheckBox>("autoCropCheckBox")->isChecked());
}

void tst_CorrectionHandles::the_line_levels_the_picture_data()
{
    QTest::addColumn<QPointF>("from");
    QTest::addColumn<QPointF>("to");
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("horizon");

    QTest::newRow("right end down turns it up again")
        << restingEnd << QPointF(482, 262) << 0 << -57;
    QTest::newRow("right end up turns it down again") << restingEnd << QPointF(482, 202) << 0 << 57;
    QTest::newRow("left end down turns it up again")
        << restingStart << QPointF(182, 262) << 0 << 57;
    QTest::newRow("left end up turns it down again")
        << restingStart << QPointF(182, 202) << 0 << -57;
    QTest::newRow("right end to the left of the other one")
        << restingEnd << QPointF(82, 242) << 0 << 57;
    QTest::newRow("left end to the right of the other one")
        << restingStart << QPointF(582, 242) << 0 << -57;
    QTest::newRow("along the line levels nothing") << restingEnd << QPointF(582, 232) << 0 << 0;
    QTest::newRow("added to what is there") << restingEnd << QPointF(482, 262) << 20 << -37;

    QTest::newRow("leaning to the right upwards turns upright")
        << restingEnd << QPointF(200, 52) << 0 << -57;
    QTest::newRow("leaning to the left upwards turns upright")
        << restingEnd << QPointF(164, 52) << 0 << 57;
    QTest::newRow("leaning to the right downwards turns upright")
        << restingEnd << QPointF(200, 412) << 0 << 57;
    QTest::newRow("leaning to the left downwards turns upright")
        << restingEnd << QPointF(164, 412) << 0 << -57;
    QTest::newRow("upright is right") << restingEnd << QPointF(182, 82) << 0 << 0;

    QTest::newRow("30 degrees end at 15") << restingEnd << QPointF(442, 382) << 0 << -150;
    QTest::newRow("30 degrees end at 15 the other way")
        << restingEnd << QPointF(442, 82) << 0 << 150;
    QTest::newRow("60 degrees end at 15 towards upright")
        << restingEnd << QPointF(282, 405) << 0 << 150;
}

void tst_CorrectionHandles::the_line_levels_the_picture()
{
    QFETCH(QPointF, from);
    QFETCH(QPointF, to);
    QFETCH(int, before);
    QFETCH(int, horizon);
    child<QSlider>("horizonSlider")->setValue(before);

    drag(m_handles, from, to);

    QCOMPARE(sliderValues(), (QList<int>{horizon, 0, 0}));
    QCOMPARE(m_handles->position(Handle::LineStart), restingStart);
    QCOMPARE(m_handles->position(Handle::LineEnd), restingEnd);
}

void tst_CorrectionHandles::what_the_line_was_laid_along_is_level_data()
{
    QTest::addColumn<QPointF>("start"); // of an edge in the view
    QTest::addColumn<QPointF>("end");
    QTest::addColumn<bool>("upright");
    QTest::newRow("a horizon that falls") << QPointF(182, 222) << QPointF(482, 252) << false;
    QTest::newRow("a horizon that rises") << QPointF(182, 252) << QPointF(482, 212) << false;
    QTest::newRow("a tower that leans to the right")
        << QPointF(312, 372) << QPointF(342, 82) << true;
    QTest::newRow("a tower that leans to the left")
        << QPointF(352, 372) << QPointF(312, 82) << true;
}

void tst_CorrectionHandles::what_the_line_was_laid_along_is_level()
{
    QFETCH(QPointF, start);
    QFETCH(QPointF, end);
    QFETCH(bool, upright);

    // White above or to the left of the edge, black on its other side.
    QImage picture(600, 400, QImage::Format_RGB32);
    picture.fill(Qt::white);
    {
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(-32, -32);
        const QPointF way = (end - start) * 10.0;
        const QPointF across = upright ? QPointF(2000, 0) : QPointF(0, 2000);
        QPainterPath dark(start - way);
        dark.lineTo(end + way);
        dark.lineTo(end + way + across);
        dark.lineTo(start - way + across);
        painter.fillPath(dark, Qt::black);
    }
    QVERIFY(openPicture(picture));
    QCOMPARE(m_view->frame(), QRectF(32, 32, 600, 400));
    const auto edgesApart = [this, upright] {
        m_handles->hide();
        const QImage image = m_view->grab().toImage();
        m_handles->show();
        const double a =
            upright ? edgeInRow(image, 152, 182, 482) : edgeInColumn(image, 182, 92, 372);
        const double b =
            upright ? edgeInRow(image, 312, 182, 482) : edgeInColumn(image, 482, 92, 372);
        return a < 0 || b < 0 ? 1000.0 : std::abs(b - a);
    };
    QVERIFY2(edgesApart() > 15.0, qPrintable(QString::number(edgesApart())));

    // The whole line first, as an end that is let go already turns the picture.
    drag(m_handles, QPointF(332, 232), QPointF(332, 232) + start - restingStart);
    QCOMPARE(m_handles->position(Handle::LineStart), start);
    drag(m_handles, m_handles->position(Handle::LineEnd), end);

    // The slider's step of a tenth of a degree is half a pixel on that way.
    QVERIFY2(edgesApart() < 1.0, qPrintable(QString::number(edgesApart())));
}

void tst_CorrectionHandles::the_line_turns_only_when_it_is_released()
{
    press(m_handles, restingEnd);
    move(m_handles, QPointF(482, 262));
    QCOMPARE(m_handles->position(Handle::LineEnd), QPointF(482, 262));
    QCOMPARE(m_handles->position(Handle::LineStart), restingStart);
    QCOMPARE(m_handles->position(Handle::LineMiddle), QPointF(332, 247));
    QCOMPARE(sliderValues(), (QList<int>{0, 0, 0}));
    QVERIFY(!m_undo->isEnabled());

    release(m_handles, QPointF(482, 262));
    QCOMPARE(sliderValues(), (QList<int>{-57, 0, 0}));
    QVERIFY(m_undo->isEnabled());
}

void tst_CorrectionHandles::the_line_stays_on_the_picture_data()
{
    QTest::addColumn<Handle>("handle");
    QTest::addColumn<QPointF>("to");
    QTest::addColumn<QPointF>("kept");
    QTest::newRow("start beyond the left edge")
        << Handle::LineStart << QPointF(-500, 200) << QPointF(32, 200);
    QTest::newRow("start above the picture")
        << Handle::LineStart << QPointF(200, -500) << QPointF(200, 32);
    QTest::newRow("end beyond the right edge")
        << Handle::LineEnd << QPointF(5000, 200) << QPointF(632, 200);
    QTest::newRow("end below the picture")
        << Handle::LineEnd << QPointF(400, 5000) << QPointF(400, 432);
    QTest::newRow("middle beyond a corner")
        << Handle::LineMiddle << QPointF(5000, 5000) << QPointF(632, 432);
}

void tst_CorrectionHandles::the_line_stays_on_the_picture()
{
    QFETCH(Handle, handle);
    QFETCH(QPointF, to);
    QFETCH(QPointF, kept);
    press(m_handles, m_handles->position(handle));
    move(m_handles, to);
    QCOMPARE(m_handles->position(handle), kept);
}

void tst_CorrectionHandles::the_middle_moves_the_line_and_corrects_nothing()
{
    QSignalSpy dragged(m_handles, &CorrectionHandles::correctionsDragged);
    drag(m_handles, QPointF(332, 232), QPointF(372, 262));
    QCOMPARE(m_handles->position(Handle::LineMiddle), QPointF(372, 262));
    QCOMPARE(m_handles->position(Handle::LineStart), QPointF(222, 262));
    QCOMPARE(m_handles->position(Handle::LineEnd), QPointF(522, 262));
    QCOMPARE(dragged.count(), 0);
    QCOMPARE(sliderValues(), (QList<int>{0, 0, 0}));
    QVERIFY(!m_undo->isEnabled());
    QVERIFY(!m_window->isWindowModified());

    // The line stays there for the next hand, and is taken there.
    drag(m_handles, QPointF(372, 262), QPointF(332, 202));
    QCOMPARE(m_handles->position(Handle::LineStart), QPointF(182, 202));
    drag(m_handles, QPointF(482, 202), QPointF(482, 232));
    QCOMPARE(sliderValues(), (QList<int>{-57, 0, 0}));
}

void tst_CorrectionHandles::another_button_does_nothing_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::newRow("right") << Qt::RightButton;
    QTest::newRow("middle") << Qt::MiddleButton;
}

void tst_CorrectionHandles::another_button_does_nothing()
{
    QFETCH(Qt::MouseButton, button);
    QSignalSpy dragged(m_handles, &CorrectionHandles::correctionsDragged);
    QSignalSpy released(m_handles, &CorrectionHandles::released);
    for (const Handle handle : allHandles) {
        const QPointF position = m_handles->position(handle);
        drag(m_handles, position, position + QPointF(30, 20), button);
        QCOMPARE(m_handles->position(handle), position);
    }
    QCOMPARE(dragged.count(), 0);
    QCOMPARE(released.count(), 0);
    QCOMPARE(sliderValues(), (QList<int>{0, 0, 0}));
    QVERIFY(!m_undo->isEnabled());
}

void tst_CorrectionHandles::another_button_does_not_end_a_drag()
{
    const QPointF from(612, 232);
    press(m_handles, from);
    move(m_handles, from + QPointF(15, 0));
    const QPointF way(15, 0);
    sendMouse(m_handles, QEvent::MouseButtonPress, from + way, Qt::RightButton,
              Qt::LeftButton | Qt::RightButton);
    sendMouse(m_handles, QEvent::MouseButtonRelease, from + way, Qt::RightButton, Qt::LeftButton);
    move(m_handles, from + 2 * way);
    release(m_handles, from + 2 * way);
    QCOMPARE(sliderValues(), (QList<int>{0, 0, 10}));
    m_undo->trigger();
    QCOMPARE(sliderValues(), (QList<int>{0, 0, 0}));
}

void tst_CorrectionHandles::without_a_handle_there_is_no_drag_data()
{
    QTest::addColumn<QPointF>("from");
    QTest::newRow("within the picture") << QPointF(132, 132);
    QTest::newRow("beside the picture") << QPointF(10, 10);
    QTest::newRow("on the line, between its handles") << QPointF(257, 232);
    QTest::newRow("15 pixels above a handle") << QPointF(52, 217);
    QTest::newRow("11 pixels to the side and above") << QPointF(623, 221);
}

void tst_CorrectionHandles::without_a_handle_there_is_no_drag()
{
    QFETCH(QPointF, from);
    QSignalSpy dragged(m_handles, &CorrectionHandles::correctionsDragged);
    QSignalSpy released(m_handles, &CorrectionHandles::released);
    hover(m_handles, from);
    QVERIFY(!m_handles->testAttribute(Qt::WA_SetCursor));

    // Across a handle, which it doesn't take along.
    press(m_handles, from);
    move(m_handles, QPointF(332, 52));
    move(m_handles, QPointF(382, 52));
    release(m_handles, QPointF(382, 52));
    QCOMPARE(dragged.count(), 0);
    QCOMPARE(released.count(), 0);
    QCOMPARE(sliderValues(), (QList<int>{0, 0, 0}));
    QVERIFY(!m_undo->isEnabled());
}

void tst_CorrectionHandles::are_hidden_without_a_picture()
{
    makeWindow();
    auto* action = child<QAction>("actionHandles");
    QVERIFY(action->isChecked()); // as in the window before
    QVERIFY(!m_handles->isVisible());
    action->setChecked(false);
    action->setChecked(true);
    QVERIFY(!m_handles->isVisible());
    QVERIFY(!m_window->openPicture(m_pictures.filePath(QStringLiteral("none.png"))));
    QVERIFY(!m_handles->isVisible());

    QVERIFY(openPicture(QImage(60, 40, QImage::Format_RGB32)));
    QVERIFY(m_handles->isVisible());
}

void tst_CorrectionHandles::follow_their_action_and_are_remembered()
{
    auto* action = child<QAction>("actionHandles");
    auto* button = child<QAbstractButton>("handlesButton");
    QCOMPARE(CSettings().value(QStringLiteral("handles.visible")).toBool(), true);
    QVERIFY(button->isChecked());

    action->trigger();
    QVERIFY(!m_handles->isVisible());
    QVERIFY(!button->isChecked());
    QCOMPARE(CSettings().value(QStringLiteral("handles.visible"), true).toBool(), false);

    QTest::mouseClick(button, Qt::LeftButton);
    QVERIFY(m_handles->isVisible());
    QVERIFY(action->isChecked());
    QCOMPARE(CSettings().value(QStringLiteral("handles.visible"), false).toBool(), true);
}

void tst_CorrectionHandles::start_as_they_were_left_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<bool>("visible");
    QTest::newRow("never touched") << QVariant() << false;
    QTest::newRow("left visible") << QVariant(true) << true;
    QTest::newRow("left hidden") << QVariant(false) << false;
}

void tst_CorrectionHandles::start_as_they_were_left()
{
    QFETCH(QVariant, stored);
    QFETCH(bool, visible);
    if (stored.isValid())
        CSettings().setValue(QStringLiteral("handles.visible"), stored);
    else
        CSettings().remove(QStringLiteral("handles.visible"));

    makeWindow();
    QVERIFY(openPicture(QImage(60, 40, QImage::Format_RGB32)));

    QCOMPARE(m_handles->isVisible(), visible);
    QCOMPARE(child<QAction>("actionHandles")->isChecked(), visible);
}

void tst_CorrectionHandles::hidden_during_a_drag_they_have_let_go()
{
    auto* action = child<QAction>("actionHandles");
    press(m_handles, QPointF(612, 232));
    move(m_handles, QPointF(642, 232));
    QCOMPARE(sliderValues(), (QList<int>{0, 0, 10}));

    // By its shortcut; a hidden widget is told of no release.
    action->trigger();
    action->trigger();
    QVERIFY(m_handles->isVisible());
    hover(m_handles, QPointF(312, 132));
    QCOMPARE(sliderValues(), (QList<int>{0, 0, 10}));

    // What was dragged until then can be undone.
    QVERIFY(m_undo->isEnabled());
    m_undo->trigger();
    QCOMPARE(sliderValues(), (QList<int>{0, 0, 0}));
}

void tst_CorrectionHandles::a_picture_that_is_opened_during_a_drag_stays_as_it_is()
{
    child<QSlider>("distortionSlider")->setValue(50);
    press(m_handles, QPointF(612, 232));
    move(m_handles, QPointF(642, 232));
    QCOMPARE(sliderValues(), (QList<int>{0, 50, 10}));

    QImage picture(60, 40, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    QVERIFY(openPicture(picture));
    QCOMPARE(sliderValues(), (QList<int>{0, 0, 0}));

    move(m_handles, QPointF(652, 232));
    release(m_handles, QPointF(652, 232));
    QCOMPARE(sliderValues(), (QList<int>{0, 0, 0}));
    QVERIFY(!m_window->isWindowModified());
}

void tst_CorrectionHandles::a_frame_without_a_size_does_no_harm_data()
{
    QTest::addColumn<QRectF>("frame");
    QTest::newRow("none at all") << QRectF();
    QTest::newRow("a point") << QRectF(300, 200, 0, 0);
    QTest::newRow("without a width") << QRectF(300, 32, 0, 400);
    QTest::newRow("without a height") << QRectF(32, 200, 600, 0);
    QTest::newRow("one pixel") << QRectF(300, 200, 1, 1);
    QTest::newRow("narrower than its handles") << QRectF(300, 32, 10, 400);
}

void tst_CorrectionHandles::a_frame_without_a_size_does_no_harm()
{
    QFETCH(QRectF, frame);
    CorrectionHandles handles;
    handles.resize(664, 464);
    handles.setFrame(frame);
    bool allFinite = true;
    connect(&handles, &CorrectionHandles::correctionsDragged, this,
            [&allFinite](const Corrections& corrections) {
                allFinite = allFinite && std::isfinite(corrections.horizon)
                    && std::isfinite(corrections.distortion) && std::isfinite(corrections.keystone);
            });
    for (const Handle handle : allHandles) {
        const QPointF position = handles.position(handle);
        QVERIFY(isFinite(position));
        drag(&handles, position, position + QPointF(20, 10));
        drag(&handles, position, position);
        QVERIFY(!handles.grab().isNull());
    }
    QVERIFY(allFinite);

    // Nothing of it stays: on a picture the line has a place and can be taken.
    handles.setFrame(QRectF(32, 32, 600, 400));
    for (const Handle handle : allHandles)
        QVERIFY(isFinite(handles.position(handle)));
}

void tst_CorrectionHandles::a_window_that_is_resized_during_a_drag_does_no_harm_data()
{
    QTest::addColumn<Handle>("handle");
    QTest::addColumn<QSize>("size");
    QTest::newRow("turned at the top, smaller") << Handle::TurnTop << QSize(320, 240);
    QTest::newRow("turned at the top, larger") << Handle::TurnTop << QSize(900, 700);
    QTest::newRow("keystone, smaller") << Handle::Right << QSize(320, 240);
    QTest::newRow("keystone, larger") << Handle::Left << QSize(900, 700);
    QTest::newRow("distortion, smaller") << Handle::TopLeft << QSize(320, 240);
    QTest::newRow("distortion, larger") << Handle::BottomRight << QSize(900, 700);
    QTest::newRow("start of the line, smaller") << Handle::LineStart << QSize(320, 240);
    QTest::newRow("end of the line, larger") << Handle::LineEnd << QSize(900, 700);
    QTest::newRow("middle of the line, smaller") << Handle::LineMiddle << QSize(320, 240);
}

void tst_CorrectionHandles::a_window_that_is_resized_during_a_drag_does_no_harm()
{
    QFETCH(Handle, handle);
    QFETCH(QSize, size);
    const QPointF from = m_handles->position(handle);
    press(m_handles, from);
    move(m_handles, from + QPointF(8, 6));
    m_view->setFixedSize(size);
    QTRY_COMPARE(m_handles->size(), size);
    move(m_handles, from + QPointF(12, 9));
    QVERIFY(!m_window->grab().isNull());
    release(m_handles, from + QPointF(12, 9));

    const QRectF frame = m_view->frame();
    for (const Handle each : allHandles)
        QVERIFY(isFinite(m_handles->position(each)));
    QVERIFY(frame.contains(m_handles->position(Handle::LineMiddle)));
    // It is an undo step as any other.
    m_undo->trigger();
    QCOMPARE(sliderValues(), (QList<int>{0, 0, 0}));
    QVERIFY(!m_undo->isEnabled());
}

void tst_CorrectionHandles::the_grid_lies_on_the_picture_only_data()
{
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<int>("fields");
    QTest::addColumn<QRect>("frame");
    QTest::addColumn<QList<int>>("columns");
    QTest::addColumn<QList<int>>("rows");
    QTest::newRow("6 fields") << QSize(60, 40) << 6 << QRect(32, 32, 600, 400)
                              << QList<int>{132, 232, 332, 432, 532}
                              << QList<int>{99, 165, 232, 299, 365};
    QTest::newRow("4 fields") << QSize(60, 40) << 4 << QRect(32, 32, 600, 400)
                              << QList<int>{182, 332, 482} << QList<int>{132, 232, 332};
    QTest::newRow("1 field") << QSize(60, 40) << 1 << QRect(32, 32, 600, 400) << QList<int>{}
                             << QList<int>{};
    QTest::newRow("no field counts as 1")
        << QSize(60, 40) << 0 << QRect(32, 32, 600, 400) << QList<int>{} << QList<int>{};
    QTest::newRow("a tall picture")
        << QSize(40, 80) << 2 << QRect(232, 32, 200, 400) << QList<int>{332} << QList<int>{232};
    QTest::newRow("a wide picture") << QSize(120, 20) << 3 << QRect(32, 182, 600, 100)
                                    << QList<int>{232, 432} << QList<int>{215, 249};
}

void tst_CorrectionHandles::the_grid_lies_on_the_picture_only()
{
    QFETCH(QSize, picture);
    QFETCH(int, fields);
    QFETCH(QRect, frame);
    QFETCH(QList<int>, columns);
    QFETCH(QList<int>, rows);
    child<QAction>("actionHandles")->setChecked(false);
    QImage green(picture, QImage::Format_RGB32);
    green.fill(QColor(0, 128, 0));
    QVERIFY(openPicture(green));
    m_view->setGridSize(fields);

    const QImage without = m_view->grab().toImage();
    child<QAction>("actionGrid")->trigger();
    const QImage with = m_view->grab().toImage();

    QCOMPARE(with.size(), QSize(664, 464));
    for (int y = 0; y < with.height(); ++y) {
        for (int x = 0; x < with.width(); ++x) {
            const bool onGrid = frame.contains(x, y) && (columns.contains(x) || rows.contains(y));
            if ((with.pixel(x, y) != without.pixel(x, y)) != onGrid)
                QFAIL(qPrintable(QStringLiteral("(%1, %2)").arg(x).arg(y)));
        }
    }
}

void tst_CorrectionHandles::the_grid_is_a_veil_of_white()
{
    child<QAction>("actionHandles")->setChecked(false);
    child<QAction>("actionGrid")->setChecked(true);
    const QImage image = m_view->grab().toImage();
    // 110 of 255 parts white over the picture's (0, 128, 0).
    for (const QPoint& point :
         {QPoint(132, 60), QPoint(532, 400), QPoint(60, 99), QPoint(600, 365), QPoint(132, 32),
          QPoint(132, 431), QPoint(32, 99), QPoint(631, 99)}) {
        const QColor colour = image.pixelColor(point);
        QVERIFY2(qAbs(colour.red() - 110) <= 2 && qAbs(colour.green() - 183) <= 2
                     && qAbs(colour.blue() - 110) <= 2,
                 qPrintable(colour.name()));
    }
    QCOMPARE(image.pixelColor(133, 60), QColor(0, 128, 0));
    QCOMPARE(image.pixelColor(131, 60), QColor(0, 128, 0));
}

void tst_CorrectionHandles::the_grid_is_the_same_in_the_window()
{
    child<QAction>("actionHandles")->setChecked(false);
    child<QAction>("actionGrid")->setChecked(true);
    const QPoint view = m_view->mapTo(m_window.get(), QPoint(0, 0));
    QVERIFY(view.y() > 60);
    const auto shown = [](QWidget* widget, const QPoint& topLeft) {
        return widget->grab(QRect(topLeft, QSize(600, 400)))
            .toImage()
            .convertToFormat(QImage::Format_RGB32);
    };
    QCOMPARE(shown(m_window.get(), view + QPoint(32, 32)), shown(m_view, QPoint(32, 32)));
}

QTEST_MAIN(tst_CorrectionHandles)

#include "tst_CorrectionHandles.moc"

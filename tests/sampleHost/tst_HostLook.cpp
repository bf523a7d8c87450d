// What the sample host looks like, measured in what it paints: texts can be read, focus and hover
// can be seen, the keyboard reaches everything, icons are crisp, and things stand in line.

#include "BusyBar.h"
#include "DialogWatcher.h"
#include "HostStyle.h"
#include "MainWindow.h"
#include "MessageBox.h"
#include "PreferencesDialog.h"
#include "Settings.h"
#include "TemporarySettings.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPointer>
#include <QProcess>
#include <QPushButton>
#include <QSlider>
#include <QStyleOption>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <vector>

using namespace VEK_NAMESPACE;

namespace {

/// Set for a process that only paints the tool buttons into that folder.
const char iconsVariable[] = "HOST_PAINTS_TOOL_BUTTONS_INTO";

const char* const toolButtons[] = {"undoButton", "gridButton", "handlesButton"};

constexpr int boxHeight = 165;

/// As the guidelines for web content have it: 0 for black to 1 for white.
double luminance(const QColor& colour)
{
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF())
        + 0.0722 * linear(colour.blueF());
}

double contrast(const QColor& a, const QColor& b)
{
    const double x = luminance(a);
    const double y = luminance(b);
    return (std::max(x, y) + 0.05) / (std::min(x, y) + 0.05);
}

/// The colour that most pixels have.
QColor groundOf(const QImage& image)
{
    std::map<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            ++counts[image.pixel(x, y)];
    }
    const auto most =
        std::max_element(counts.begin(), counts.end(),
                         [](const auto& a, const auto& b) { return a.second < b.second; });
    return QColor(most->first);
}

/// The colour that stands out most from the ground, which is that of a text's stems.
QColor inkOf(const QImage& image, const QColor& ground)
{
    QColor ink = ground;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor colour = image.pixelColor(x, y);
            if (contrast(colour, ground) > contrast(ink, ground))
                ink = colour;
        }
    }
    return ink;
}

/// Where a widget's text is, without frame and indicator.
QRect textRect(const QWidget* widget)
{
    if (const auto* button = qobject_cast<const QAbstractButton*>(widget)) {
        QStyleOptionButton option;
        option.initFrom(button);
        option.text = button->text();
        return button->style()->subElementRect(qobject_cast<const QCheckBox*>(button)
                                                   ? QStyle::SE_CheckBoxContents
                                                   : QStyle::SE_PushButtonContents,
                                               &option, button);
    }
    if (const auto* combo = qobject_cast<const QComboBox*>(widget)) {
        QStyleOptionComboBox option;
        option.initFrom(combo);
        return combo->style()->subControlRect(QStyle::CC_ComboBox, &option,
                                              QStyle::SC_ComboBoxEditField, combo);
    }
    if (qobject_cast<const QLineEdit*>(widget)) {
        QStyleOptionFrame option;
        option.initFrom(widget);
        return widget->style()->subElementRect(QStyle::SE_LineEditContents, &option, widget);
    }
    return widget->contentsRect();
}

/// The part of a window where \a rect of the widget is, with everything that lies under it.
QImage painted(const QWidget* widget, const QRect& rect)
{
    QWidget* window = widget->window();
    return window->grab(QRect(widget->mapTo(window, rect.topLeft()), rect.size()))
        .toImage()
        .convertToFormat(QImage::Format_RGB32);
}

/// A widget and what is around it.
QImage painted(const QWidget* widget)
{
    return painted(widget, widget->rect().adjusted(-3, -3, 3, 3));
}

int differentPixels(const QImage& a, const QImage& b)
{
    if (a.size() != b.size())
        return -1;
    int count = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x)
            count += a.pixel(x, y) != b.pixel(x, y);
    }
    return count;
}

/// The controls of a window that a person uses, as they are shown now.
QList<QWidget*> controlsOf(const QWidget* window)
{
    QList<QWidget*> controls;
    const auto widgets = window->findChildren<QWidget*>();
    for (QWidget* widget : widgets) {
        const bool isControl = qobject_cast<QAbstractButton*>(widget)
            || qobject_cast<QAbstractSlider*>(widget) || qobject_cast<QLineEdit*>(widget)
            || qobject_cast<QComboBox*>(widget);
        if (isControl && widget->window() == window && widget->isVisible() && widget->isEnabled()
            && !widget->objectName().startsWith(QLatin1String("qt_")))
            controls << widget;
    }
    return controls;
}

QStringList names(const QList<QWidget*>& widgets)
{
    QStringList list;
    for (const QWidget* widget : widgets)
        list << widget->objectName();
    return list;
}

/// The widgets that Tab comes to, from the one that has the focus until it is back there.
QList<QWidget*> tabStops(QWidget* window, Qt::Key key = Qt::Key_Tab)
{
    QList<QWidget*> stops;
    for (int i = 0; i < 100; ++i) {
        QWidget* focused = window->focusWidget();
        if (!focused || stops.contains(focused))
            break;
        stops << focused;
        QTest::keyClick(focused, key, key == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier);
    }
    return stops;
}

void askToSave(QWidget* parent)
{
    CMessageBox::saveDiscardCancelMessage(parent, QStringLiteral("Save changes?"), boxHeight);
}
void askToRotate(QWidget* parent)
{
    CMessageBox::rotateQuestion(parent, QStringLiteral("Rotate the picture?"), boxHeight);
}
void askYesOrNo(QWidget* parent)
{
    CMessageBox::yesNoMessage(parent, QStringLiteral("Reset all corrections?"), boxHeight);
}
void askToQuit(QWidget* parent)
{
    CMessageBox::backgroundProcessingCancelMessage(parent, QStringLiteral("Writing a picture"));
}
void inform(QWidget* parent)
{
    CMessageBox::information(parent, QStringLiteral("Saved a picture"), boxHeight);
}
void alarm(QWidget* parent)
{
    CMessageBox::critical(parent, QStringLiteral("Cannot save a picture"), boxHeight);
}
void editPreferences(QWidget* parent)
{
    PreferencesDialog(parent).exec();
}

using ShowDialog = void (*)(QWidget*);

/// What a picture has at the scale of its device that the same picture in simple scale can't have:
/// what goes when it is made smaller and large again.
double detailBeyond(const QImage& image, const QSize& simple)
{
    const QImage back = image.scaled(simple, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                            .scaled(image.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    double sum = 0.0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            sum += std::abs(qGray(image.pixel(x, y)) - qGray(back.pixel(x, y)));
    }
    return sum / image.width() / image.height();
}

} // namespace

Q_DECLARE_METATYPE(ShowDialog)

class tst_HostLook : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void texts_can_be_read_data();
    void texts_can_be_read();
    void no_text_of_the_window_is_left_out();
    void the_menu_bar_can_be_read();
    void the_place_of_a_picture_can_be_read();
    void texts_of_dialogs_can_be_read_data();
    void texts_of_dialogs_can_be_read();

    void focus_can_be_seen_data();
    void focus_can_be_seen();
    void focus_can_be_seen_in_dialogs_data();
    void focus_can_be_seen_in_dialogs();
    void hover_can_be_seen_data();
    void hover_can_be_seen();
    void hover_can_be_seen_in_dialogs_data();
    void hover_can_be_seen_in_dialogs();

    void tab_reaches_every_control_of_the_window();
    void tab_reaches_every_control_of_a_dialog_data();
    void tab_reaches_every_control_of_a_dialog();
    void keys_do_what_a_click_does();
    void keys_work_in_the_preferences();
    void keys_answer_a_message_box_data();
    void keys_answer_a_message_box();

    void icons_use_all_pixels_of_the_screen_data();
    void icons_use_all_pixels_of_the_screen();

    void the_sizes_stand_in_line();
    void the_tool_panel_stands_in_line();
    void buttons_of_one_row_are_equally_high();
    void buttons_of_one_row_in_dialogs_are_equally_high_data();
    void buttons_of_one_row_in_dialogs_are_equally_high();

private:
    template <typename T>
    T* child(const char* name) const
    {
        T* found = m_window->findChild<T*>(QLatin1String(name));
        Q_ASSERT(found);
        return found;
    }
    QRect place(const QWidget* widget) const
    {
        return {widget->mapTo(m_window.get(), QPoint()), widget->size()};
    }
    QList<QRect> places(const char* name) const;
    void inDialog(ShowDialog show, const std::function<void(QDialog*)>& use);

    QTemporaryDir m_dir;
    std::unique_ptr<CTemporarySettings> m_settings;
    std::unique_ptr<MainWindow> m_window;
};

void tst_HostLook::initTestCase()
{
    m_settings = std::make_unique<CTemporarySettings>(nullptr);
    CSettings::setTemporarySettings(*m_settings);
    applyHostStyle(*qApp);
    QVERIFY(m_dir.isValid());
    QImage picture(60, 40, QImage::Format_RGB32);
    picture.fill(Qt::darkGreen);
    QVERIFY(picture.save(m_dir.filePath(QStringLiteral("picture.png"))));
}

void tst_HostLook::init()
{
    QCursor::setPos(0, 0);
    m_settings->clear();
    m_window = std::make_unique<MainWindow>();
    m_window->move(100, 50);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    QVERIFY(m_window->openPicture(m_dir.filePath(QStringLiteral("picture.png"))));
    child<QLineEdit>("titleEdit")->setText(QStringLiteral("Harbour"));
    child<QSlider>("horizonSlider")->setValue(35);
    QTest::keyClick(child<QSlider>("keystoneSlider"), Qt::Key_Right); // gives undo something
    QTRY_VERIFY(child<QAbstractButton>("undoButton")->isEnabled());
    child<QLineEdit>("titleEdit")->setFocus();
}

void tst_HostLook::cleanup()
{
    m_window.reset();
}

void tst_HostLook::cleanupTestCase()
{
    CSettings::removeTemporarySettings();
}

QList<QRect> tst_HostLook::places(const char* name) const
{
    QList<QRect> found;
    const auto widgets = m_window->findChildren<QWidget*>(QLatin1String(name));
    for (const QWidget* widget : widgets)
        found << place(widget);
    std::sort(found.begin(), found.end(),
              [](const QRect& a, const QRect& b) { return a.y() < b.y(); });
    return found;
}

void tst_HostLook::inDialog(ShowDialog show, const std::function<void(QDialog*)>& use)
{
    DialogWatcher watcher(use);
    show(m_window.get());
    QCOMPARE(watcher.count(), 1);
}

void tst_HostLook::texts_can_be_read_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("index"); // among those of that name, from top to bottom
    for (const char* name :
         {"openButton", "fileNameLabel", "imageSizeLabel", "fileSizeLabel", "preferencesButton",
          "aboutButton", "titleEdit", "resetButton", "autoCropCheckBox", "gridCheckBox",
          "saveButton", "exportButton", "closeButton", "stopButton"})
        QTest::newRow(name) << QByteArray(name) << 0;
    QTest::newRow("title of the title") << QByteArray("sectionLabel") << 0;
    QTest::newRow("title of the corrections") << QByteArray("sectionLabel") << 1;
    QTest::newRow("horizon") << QByteArray("sliderLabel") << 0;
    QTest::newRow("distortion") << QByteArray("sliderLabel") << 1;
    QTest::newRow("keystone") << QByteArray("sliderLabel") << 2;
    QTest::newRow("amount of horizon") << QByteArray("amountLabel") << 0;
    QTest::newRow("amount of distortion") << QByteArray("amountLabel") << 1;
    QTest::newRow("amount of keystone") << QByteArray("amountLabel") << 2;
    QTest::newRow("what is being done") << QByteArray("busyText") << 0;
}

void tst_HostLook::texts_can_be_read()
{
    QFETCH(QByteArray, name);
    QFETCH(int, index);
    auto* bar = child<BusyBar>("busyBar");
    bar->show();
    auto* doing = bar->findChild<QLabel*>();
    doing->setText(QStringLiteral("Writing a picture"));
    doing->setObjectName(QStringLiteral("busyText"));
    QCoreApplication::processEvents();

    QList<QWidget*> widgets = m_window->findChildren<QWidget*>(QLatin1String(name));
    std::sort(widgets.begin(), widgets.end(),
              [this](QWidget* a, QWidget* b) { return place(a).y() < place(b).y(); });
    QVERIFY(index < widgets.size());
    const QWidget* widget = widgets.at(index);
    QVERIFY(widget->isVisible() && widget->isEnabled());
    child<QSlider>("horizonSlider")->setFocus();

    const QImage image = painted(widget, textRect(widget));
    const QColor ground = groundOf(image);
    const QColor ink = inkOf(image, ground);
    const QString seen = QStringLiteral("%1 on %2, %3 to 1")
                             .arg(ink.name(), ground.name())
                             .arg(contrast(ink, ground), 0, 'f', 2);
    QVERIFY2(contrast(ink, ground) >= 4.5, qPrintable(seen));
}

void tst_HostLook::no_text_of_the_window_is_left_out()
{
    child<BusyBar>("busyBar")->show();
    QStringList texts;
    const auto widgets = m_window->findChildren<QWidget*>();
    for (const QWidget* widget : widgets) {
        const auto* label = qobject_cast<const QLabel*>(widget);
        const auto* button = qobject_cast<const QAbstractButton*>(widget);
        const bool hasText = (label && !label->text().isEmpty())
            || (button && !qobject_cast<const QToolButton*>(button));
        if (hasText && widget->isVisible() && widget->window() == m_window.get())
            texts << widget->objectName();
    }
    std::sort(texts.begin(), texts.end());
    // Those of the rows above, but for what is being done, which is empty here.
    const QStringList measured{
        "aboutButton",    "amountLabel",  "amountLabel",       "amountLabel",   "autoCropCheckBox",
        "closeButton",    "exportButton", "fileNameLabel",     "fileSizeLabel", "gridCheckBox",
        "imageSizeLabel", "openButton",   "preferencesButton", "resetButton",   "saveButton",
        "sectionLabel",   "sectionLabel", "sliderLabel",       "sliderLabel",   "sliderLabel",
        "stopButton"};
    QCOMPARE(texts, measured);
}

void tst_HostLook::the_menu_bar_can_be_read()
{
    const QMenuBar* bar = m_window->menuBar();
    const auto actions = bar->actions();
    QCOMPARE(actions.size(), 4);
    for (QAction* action : actions) {
        const QImage image = painted(bar, bar->actionGeometry(action).adjusted(1, 1, -1, -1));
        const QColor ground = groundOf(image);
        const QColor ink = inkOf(image, ground);
        QVERIFY2(
            contrast(ink, ground) >= 4.5,
            qPrintable(
                QStringLiteral("%1: %2 on %3").arg(action->text(), ink.name(), ground.name())));
    }
}

void tst_HostLook::the_place_of_a_picture_can_be_read()
{
    MainWindow window;
    window.show();
    const auto* view = window.findChild<QWidget*>(QStringLiteral("pictureView"));
    const QImage image = painted(view, view->rect());
    const QColor ground = groundOf(image);
    const QColor ink = inkOf(image, ground);
    QCOMPARE(ground.name(), QStringLiteral("#1b1b1b"));
    QVERIFY2(contrast(ink, ground) >= 4.5, qPrintable(ink.name()));
}

namespace {

void dialogRows()
{
    QTest::addColumn<ShowDialog>("show");
    QTest::newRow("preferences") << ShowDialog(editPreferences);
    QTest::newRow("save, discard or cancel") << ShowDialog(askToSave);
    QTest::newRow("rotate") << ShowDialog(askToRotate);
    QTest::newRow("yes or no") << ShowDialog(askYesOrNo);
    QTest::newRow("quit in spite of work") << ShowDialog(askToQuit);
    QTest::newRow("information") << ShowDialog(inform);
    QTest::newRow("critical") << ShowDialog(alarm);
}

} // namespace

void tst_HostLook::texts_of_dialogs_can_be_read_data()
{
    dialogRows();
}

void tst_HostLook::texts_of_dialogs_can_be_read()
{
    QFETCH(ShowDialog, show);
    inDialog(show, [](QDialog* dialog) {
        // The focus somewhere else than on what is looked at, as far as there is anything else.
        int read = 0;
        const auto widgets = dialog->findChildren<QWidget*>();
        for (QWidget* widget : widgets) {
            const auto* label = qobject_cast<QLabel*>(widget);
            const auto* button = qobject_cast<QAbstractButton*>(widget);
            const bool hasText = (label && !label->text().isEmpty())
                || (button && !button->text().isEmpty()) || qobject_cast<QComboBox*>(widget);
            if (!hasText || !widget->isVisible() || widget->window() != dialog)
                continue;
            ++read;
            if (widget->hasFocus())
                widget->clearFocus();
            const QImage image = painted(widget, textRect(widget));
            const QColor ground = groundOf(image);
            const QColor ink = inkOf(image, ground);
            const QString seen = QStringLiteral("%1: %2 on %3, %4 to 1")
                                     .arg(widget->objectName(), ink.name(), ground.name())
                                     .arg(contrast(ink, ground), 0, 'f', 2);
            // The main answers of message boxes have these colours by the product's design.
            const auto* answer = qobject_cast<QPushButton*>(widget);
            if (qobject_cast<CMessageBox*>(dialog) && answer && answer->isDefault()) {
                QCOMPARE(ink, QColor(Qt::white));
                QCOMPARE(ground, QColor(0x68, 0x8f, 0xa7));
                continue;
            }
            QVERIFY2(contrast(ink, ground) >= 4.5, qPrintable(seen));
        }
        QVERIFY(read >= 2);
    });
}

void tst_HostLook::focus_can_be_seen_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char* name :
         {"openButton", "undoButton", "gridButton", "handlesButton", "preferencesButton",
          "aboutButton", "titleEdit", "resetButton", "horizonSlider", "distortionSlider",
          "keystoneSlider", "autoCropCheckBox", "gridCheckBox", "saveButton", "exportButton",
          "closeButton"})
        QTest::newRow(name) << QByteArray(name);
}

namespace {

/// How many pixels the focus changes.
int pixelsOfFocus(QWidget* widget)
{
    widget->setFocus(Qt::TabFocusReason);
    if (auto* edit = qobject_cast<QLineEdit*>(widget))
        edit->deselect();
    if (!widget->hasFocus())
        return -1;
    const QImage with = painted(widget);
    widget->clearFocus();
    const QImage without = painted(widget);
    return differentPixels(with, without);
}

} // namespace

void tst_HostLook::focus_can_be_seen()
{
    QFETCH(QByteArray, name);
    // More than the cursor of a text has.
    const int pixels = pixelsOfFocus(child<QWidget>(name.constData()));
    QVERIFY2(pixels >= 40, qPrintable(QString::number(pixels)));
}

void tst_HostLook::focus_can_be_seen_in_dialogs_data()
{
    dialogRows();
}

void tst_HostLook::focus_can_be_seen_in_dialogs()
{
    QFETCH(ShowDialog, show);
    inDialog(show, [](QDialog* dialog) {
        const QList<QWidget*> stops = tabStops(dialog);
        QVERIFY(!stops.isEmpty());
        for (QWidget* stop : stops) {
            const int pixels = pixelsOfFocus(stop);
            QVERIFY2(pixels >= 15, // a line under a short word is the least
                     qPrintable(QStringLiteral("%1: %2").arg(stop->objectName()).arg(pixels)));
        }
    });
}

void tst_HostLook::hover_can_be_seen_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char* name : {"openButton", "undoButton", "gridButton", "handlesButton",
                             "preferencesButton", "aboutButton", "resetButton", "autoCropCheckBox",
                             "gridCheckBox", "saveButton", "exportButton", "closeButton"})
        QTest::newRow(name) << QByteArray(name);
}

namespace {

/// Whether it can be seen that the mouse comes to a button and goes.
bool showsHover(QWidget* button)
{
    const QImage idle = painted(button);
    // A check box is as long as its text only. The mouse keeps moving a little, as it does in a
    // hand.
    QPoint place(qobject_cast<QCheckBox*>(button) ? 12 : button->width() / 2, button->height() / 2);
    const bool came = QTest::qWaitFor(
        [&] {
            place.rx() ^= 1;
            QCursor::setPos(button->mapToGlobal(place));
            return button->underMouse() && differentPixels(idle, painted(button)) >= 20;
        },
        2000);
    QCursor::setPos(0, 0);
    const bool went =
        QTest::qWaitFor([&] { return !button->underMouse() && painted(button) == idle; }, 2000);
    return came && went;
}

} // namespace

void tst_HostLook::hover_can_be_seen()
{
    QFETCH(QByteArray, name);
    QVERIFY(showsHover(child<QWidget>(name.constData())));
}

void tst_HostLook::hover_can_be_seen_in_dialogs_data()
{
    dialogRows();
}

void tst_HostLook::hover_can_be_seen_in_dialogs()
{
    QFETCH(ShowDialog, show);
    inDialog(show, [](QDialog* dialog) {
        const auto buttons = dialog->findChildren<QAbstractButton*>();
        for (QAbstractButton* button : buttons) {
            if (!button->isVisible())
                continue;
            dialog->setFocus(); // a button with the focus may look as one under the mouse
            QVERIFY2(showsHover(button), qPrintable(button->objectName()));
        }
    });
}

void tst_HostLook::tab_reaches_every_control_of_the_window()
{
    const QStringList order{
        "openButton",        "undoButton",       "gridButton",     "handlesButton",
        "preferencesButton", "aboutButton",      "titleEdit",      "resetButton",
        "horizonSlider",     "distortionSlider", "keystoneSlider", "autoCropCheckBox",
        "gridCheckBox",      "saveButton",       "exportButton",   "closeButton"};
    QStringList all = names(controlsOf(m_window.get()));
    std::sort(all.begin(), all.end());
    QStringList expected = order;
    std::sort(expected.begin(), expected.end());
    QCOMPARE(all, expected);

    // In the order in which they stand.
    child<QWidget>("openButton")->setFocus();
    QCOMPARE(names(tabStops(m_window.get())), order);
    QVERIFY(child<QWidget>("openButton")->hasFocus());

    QStringList backwards = names(tabStops(m_window.get(), Qt::Key_Backtab));
    QCOMPARE(backwards.size(), order.size());
    std::reverse(backwards.begin() + 1, backwards.end());
    QCOMPARE(backwards, order);
}

void tst_HostLook::tab_reaches_every_control_of_a_dialog_data()
{
    QTest::addColumn<ShowDialog>("show");
    QTest::addColumn<QStringList>("order");
    QTest::newRow("preferences") << ShowDialog(editPreferences)
                                 << QStringList{"languageCombo", "unitsCombo",
                                                "showImageSizeCheckBox", "cancelButton",
                                                "okButton"};
    QTest::newRow("save, discard or cancel")
        << ShowDialog(askToSave) << QStringList{"discardButton", "cancelButton", "saveButton"};
    QTest::newRow("rotate") << ShowDialog(askToRotate)
                            << QStringList{"cancelButton", "rotateButton"};
    QTest::newRow("yes or no") << ShowDialog(askYesOrNo) << QStringList{"noButton", "yesButton"};
    QTest::newRow("quit in spite of work")
        << ShowDialog(askToQuit) << QStringList{"quitWithoutSavingButton", "dontQuitButton"};
    QTest::newRow("information") << ShowDialog(inform) << QStringList{"mbSipleButton"};
    QTest::newRow("critical") << ShowDialog(alarm) << QStringList{"mbSipleButton"};
}

void tst_HostLook::tab_reaches_every_control_of_a_dialog()
{
    QFETCH(ShowDialog, show);
    QFETCH(QStringList, order);
    inDialog(show, [&order](QDialog* dialog) {
        QStringList all = names(controlsOf(dialog));
        QStringList expected = order;
        std::sort(all.begin(), all.end());
        std::sort(expected.begin(), expected.end());
        QCOMPARE(all, expected);

        // There is a focus without any click or Tab.
        QVERIFY(dialog->focusWidget() && dialog->focusWidget()->hasFocus());
        dialog->findChild<QWidget*>(order.first())->setFocus();
        QCOMPARE(names(tabStops(dialog)), order);
        QCOMPARE(dialog->focusWidget()->objectName(), order.first());
    });
}

void tst_HostLook::keys_do_what_a_click_does()
{
    auto* grid = child<QCheckBox>("gridCheckBox");
    QTest::keyClick(grid, Qt::Key_Space);
    QVERIFY(grid->isChecked());
    QTest::keyClick(child<QToolButton>("gridButton"), Qt::Key_Space);
    QVERIFY(!grid->isChecked());
    QTest::keyClick(child<QToolButton>("handlesButton"), Qt::Key_Space);
    QVERIFY(child<QWidget>("handles")->isVisible());

    auto* keystone = child<QSlider>("keystoneSlider");
    keystone->setValue(0);
    QTest::keyClick(keystone, Qt::Key_Left);
    QTest::keyClick(keystone, Qt::Key_PageDown);
    QCOMPARE(keystone->value(), -11);
    QTest::keyClick(keystone, Qt::Key_End);
    QCOMPARE(keystone->value(), 100);

    QStringList dialogs;
    DialogWatcher watcher([&dialogs](QDialog* dialog) { dialogs << dialog->objectName(); });
    QTest::keyClick(child<QPushButton>("preferencesButton"), Qt::Key_Space);
    QTest::keyClick(child<QPushButton>("resetButton"), Qt::Key_Space);
    QCOMPARE(dialogs.size(), 2);
    QCOMPARE(dialogs.first(), QStringLiteral("preferencesDialog"));

    QTest::keyClick(child<QPushButton>("aboutButton"), Qt::Key_Space);
    const QPointer<QWidget> about = m_window->findChild<QWidget*>(QStringLiteral("aboutDlg"));
    QVERIFY(about && QTest::qWaitForWindowActive(about));
    QTest::keyClick(about, Qt::Key_Escape);
    QTRY_VERIFY(!about);
}

void tst_HostLook::keys_work_in_the_preferences()
{
    const QString showImageSize = QStringLiteral("showImageSizeCheckBox");
    const auto toggleAnd = [&](Qt::Key key) {
        int result = -1;
        inDialog([](QWidget* parent) { PreferencesDialog(parent).exec(); },
                 [&](QDialog* dialog) {
                     auto* check = dialog->findChild<QCheckBox*>(showImageSize);
                     check->setFocus();
                     QTest::keyClick(check, Qt::Key_Space);
                     QTest::keyClick(check, key);
                     QVERIFY(!dialog->isVisible());
                     result = dialog->result();
                 });
        return result;
    };
    QCOMPARE(toggleAnd(Qt::Key_Escape), int(QDialog::Rejected));
    QVERIFY(CSettings().value(QStringLiteral("ShowImageSize"), true).toBool());
    QCOMPARE(toggleAnd(Qt::Key_Return), int(QDialog::Accepted));
    // Space has taken the check mark away, Enter has kept that.
    inDialog(editPreferences, [&](QDialog* dialog) {
        QVERIFY(!dialog->findChild<QCheckBox*>(showImageSize)->isChecked());
    });
}

void tst_HostLook::keys_answer_a_message_box_data()
{
    QTest::addColumn<QString>("box");
    QTest::addColumn<QList<int>>("keys");
    QTest::addColumn<int>("answer");
    const int save = QMessageBox::Save;
    const int discard = QMessageBox::Discard;
    const int cancel = QMessageBox::Cancel;
    QTest::newRow("Enter saves") << "save" << QList<int>{Qt::Key_Return} << save;
    QTest::newRow("Enter of the number pad saves") << "save" << QList<int>{Qt::Key_Enter} << save;
    QTest::newRow("Escape cancels") << "save" << QList<int>{Qt::Key_Escape} << cancel;
    QTest::newRow("Space does what has the focus, which is saving")
        << "save" << QList<int>{Qt::Key_Space} << save;
    QTest::newRow("Tab and Space discard")
        << "save" << QList<int>{Qt::Key_Tab, Qt::Key_Space} << discard;
    QTest::newRow("Tab and Enter discard")
        << "save" << QList<int>{Qt::Key_Tab, Qt::Key_Return} << discard;
    QTest::newRow("Tab, Tab and Space cancel")
        << "save" << QList<int>{Qt::Key_Tab, Qt::Key_Tab, Qt::Key_Space} << cancel;
    QTest::newRow("Enter is yes") << "yes" << QList<int>{Qt::Key_Return} << int(QMessageBox::Yes);
    QTest::newRow("Escape is no") << "yes" << QList<int>{Qt::Key_Escape} << int(QMessageBox::No);
    QTest::newRow("Tab and Space is no")
        << "yes" << QList<int>{Qt::Key_Tab, Qt::Key_Space} << int(QMessageBox::No);
}

void tst_HostLook::keys_answer_a_message_box()
{
    QFETCH(QString, box);
    QFETCH(QList<int>, keys);
    QFETCH(int, answer);
    DialogWatcher watcher([&keys](QDialog* dialog) {
        for (const int key : keys)
            QTest::keyClick(dialog->focusWidget() ? dialog->focusWidget() : dialog, Qt::Key(key));
        QVERIFY(!dialog->isVisible());
    });
    const QString text = QStringLiteral("Well?");
    const int given = box == QLatin1String("save")
        ? CMessageBox::saveDiscardCancelMessage(m_window.get(), text, boxHeight)
        : CMessageBox::yesNoMessage(m_window.get(), text, boxHeight);
    QCOMPARE(watcher.count(), 1);
    QCOMPARE(given, answer);
}

void tst_HostLook::icons_use_all_pixels_of_the_screen_data()
{
    QTest::addColumn<QString>("scale");
    QTest::addColumn<double>("factor");
    QTest::newRow("150 percent") << "1.5" << 1.5;
    QTest::newRow("200 percent") << "2" << 2.0;
}

void tst_HostLook::icons_use_all_pixels_of_the_screen()
{
    QFETCH(QString, scale);
    QFETCH(double, factor);
    const auto paintedAt = [this](const QString& factorText) {
        const QString folder = m_dir.filePath(factorText);
        QDir().mkpath(folder);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_SCALE_FACTOR"), factorText);
        environment.insert(QLatin1String(iconsVariable), folder);
        QProcess process;
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::ForwardedChannels);
        process.start(QCoreApplication::applicationFilePath(), QStringList());
        return process.waitForFinished(60000) && process.exitCode() == 0 ? folder : QString();
    };
    const QDir simple(paintedAt(QStringLiteral("1")));
    const QDir scaled(paintedAt(scale));
    for (const char* name : toolButtons) {
        const QString file = QLatin1String(name) + QStringLiteral(".png");
        const QImage plain(simple.filePath(file));
        const QImage image(scaled.filePath(file));
        QCOMPARE(plain.size(), QSize(24, 24));
        QCOMPARE(image.size(), QSize(24, 24) * factor);

        // More than there is in the plain icon enlarged, smoothly or to blocks.
        const QImage smooth =
            plain.scaled(image.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        const double detail = detailBeyond(image, plain.size());
        const double ofSmooth = detailBeyond(smooth, plain.size());
        const QString seen =
            QStringLiteral("%1: %2, enlarged %3").arg(file).arg(detail).arg(ofSmooth);
        QVERIFY2(detail > 1.4 * ofSmooth, qPrintable(seen));
        const QImage blocks = image.scaled(plain.size()).scaled(image.size());
        const int beyondBlocks = differentPixels(image, blocks);
        QVERIFY2(beyondBlocks > 100,
                 qPrintable(QStringLiteral("%1: %2").arg(file).arg(beyondBlocks)));
    }
}

void tst_HostLook::the_sizes_stand_in_line()
{
    const auto* image = child<QLabel>("imageSizeLabel");
    const auto* file = child<QLabel>("fileSizeLabel");
    QCOMPARE(file->font(), image->font());
    QCOMPARE(place(file).top(), place(image).top());
    QCOMPARE(place(file).height(), place(image).height());
    QCOMPARE(place(file).left() - place(image).right(), 13);
    QCOMPARE(place(image).left(), place(child<QLabel>("fileNameLabel")).left());
}

void tst_HostLook::the_tool_panel_stands_in_line()
{
    const QWidget* panel = child<QWidget>("toolPanel");
    const int left = place(child<QWidget>("titleEdit")).left();
    const int right = place(child<QWidget>("titleEdit")).right();
    QCOMPARE(left - place(panel).left(), 25); // 24 beside the line at the panel's edge
    QCOMPARE(place(panel).right() - right, 24);
    for (const char* name :
         {"sectionLabel", "titleEdit", "sliderIcon", "horizonSlider", "distortionSlider",
          "keystoneSlider", "autoCropCheckBox", "gridCheckBox", "saveButton", "exportButton"}) {
        const QList<QRect> rects = places(name);
        for (const QRect& rect : rects)
            QVERIFY2(rect.left() == left,
                     qPrintable(QStringLiteral("%1: %2").arg(name).arg(rect.left() - left)));
    }
    for (const char* name : {"titleEdit", "amountLabel", "horizonSlider", "distortionSlider",
                             "keystoneSlider", "resetButton", "saveButton", "closeButton"}) {
        const QList<QRect> rects = places(name);
        for (const QRect& rect : rects)
            QVERIFY2(rect.right() == right,
                     qPrintable(QStringLiteral("%1: %2").arg(name).arg(rect.right() - right)));
    }

    // Three rows of the same shape, at the same distance.
    for (const char* name : {"sliderLabel", "amountLabel", "sliderIcon"}) {
        const QList<QRect> rows = places(name);
        QCOMPARE(rows.size(), 3);
        QCOMPARE(rows[1].y() - rows[0].y(), rows[2].y() - rows[1].y());
        QVERIFY(rows[1].y() > rows[0].bottom());
    }
    const QList<QRect> labels = places("sliderLabel");
    QCOMPARE(labels[1].x(), labels[0].x());
    QCOMPARE(labels[2].x(), labels[0].x());
    QCOMPARE(labels[1].height(), labels[0].height());
    QCOMPARE(labels[2].height(), labels[0].height());
    const QList<QRect> sliders =
        places("horizonSlider") + places("distortionSlider") + places("keystoneSlider");
    QCOMPARE(sliders[1].y() - sliders[0].y(), sliders[2].y() - sliders[1].y());
    QCOMPARE(sliders[1].y() - sliders[0].y(), labels[1].y() - labels[0].y());
    QCOMPARE(sliders[1].size(), sliders[0].size());

    // An icon, its name and its amount are on one line.
    const QList<QRect> icons = places("sliderIcon");
    const QList<QRect> amounts = places("amountLabel");
    for (int i = 0; i < 3; ++i) {
        const int middle = labels[i].center().y();
        QVERIFY(qAbs(icons[i].center().y() - middle) <= 1);
        QVERIFY(qAbs(amounts[i].center().y() - middle) <= 1);
    }
}

void tst_HostLook::buttons_of_one_row_are_equally_high()
{
    const std::vector<std::vector<const char*>> rows{
        {"openButton", "preferencesButton", "aboutButton"},
        {"undoButton", "gridButton", "handlesButton"},
        {"exportButton", "closeButton"}};
    for (const auto& row : rows) {
        const QRect first = place(child<QWidget>(row.front()));
        for (const char* name : row) {
            const QRect rect = place(child<QWidget>(name));
            QVERIFY2(rect.top() == first.top() && rect.height() == first.height(), name);
        }
    }
    QCOMPARE(child<QWidget>("saveButton")->height(), child<QWidget>("exportButton")->height());
    for (const char* name : toolButtons)
        QCOMPARE(child<QWidget>(name)->size(), child<QWidget>("undoButton")->size());

    // The two kinds of a row have one middle.
    QVERIFY(qAbs(place(child<QWidget>("undoButton")).center().y()
                 - place(child<QWidget>("openButton")).center().y())
            <= 1);
}

void tst_HostLook::buttons_of_one_row_in_dialogs_are_equally_high_data()
{
    dialogRows();
}

void tst_HostLook::buttons_of_one_row_in_dialogs_are_equally_high()
{
    QFETCH(ShowDialog, show);
    inDialog(show, [](QDialog* dialog) {
        const auto buttons = dialog->findChildren<QPushButton*>();
        QVERIFY(!buttons.isEmpty());
        const int top = buttons.first()->mapTo(dialog, QPoint()).y();
        for (const QPushButton* button : buttons) {
            QCOMPARE(button->mapTo(dialog, QPoint()).y(), top);
            QCOMPARE(button->height(), buttons.first()->height());
        }
    });
}

int main(int argc, char** argv)
{
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    if (!qEnvironmentVariableIsSet(iconsVariable)) {
        tst_HostLook test;
        return QTest::qExec(&test, argc, argv);
    }

    CTemporarySettings settings(nullptr);
    CSettings::setTemporarySettings(settings);
    applyHostStyle(application);
    const QDir folder(qEnvironmentVariable(iconsVariable));
    bool isPainted = true;
    {
        MainWindow window;
        window.findChild<QAction*>(QStringLiteral("actionUndo"))->setEnabled(true);
        window.show();
        for (const char* name : toolButtons) {
            auto* button = window.findChild<QToolButton*>(QLatin1String(name));
            QRect icon(0, 0, 24, 24);
            icon.moveTopLeft(button->rect().center() - QPoint(11, 11));
            const QImage image = button->grab(icon).toImage();
            isPainted = image.save(folder.filePath(QLatin1String(name) + ".png")) && isPainted;
        }
    }
    CSettings::removeTemporarySettings();
    return isPainted ? 0 : 1;
}

#include "tst_HostLook.moc"

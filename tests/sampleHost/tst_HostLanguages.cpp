// The sample host in its four languages, changed through its preferences: every text changes at
// once, Qt's own too, numbers follow, and no text is wider than its place.

#include "BusyBar.h"
#include "CommonConstants.h"
#include "DialogWatcher.h"
#include "HostStyle.h"
#include "LanguageManager.h"
#include "MainWindow.h"
#include "MessageBox.h"
#include "PictureView.h"
#include "Settings.h"
#include "TemporarySettings.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMap>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPainter>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QSet>
#include <QSlider>
#include <QStyleOption>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <QTranslator>

#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>

using namespace VEK_NAMESPACE;

namespace {

/// Rows of the languages in the preferences.
enum Language
{
    German,
    English,
    French,
    Japanese
};

constexpr Language allLanguages[] = {German, English, French, Japanese};
constexpr const char* languageNames[] = {"German", "English", "French", "Japanese"};

/// What is stored for a language.
constexpr int numbers[] = {1031, 1033, 1036, 1041};

const char languageKey[] = "VekAppLanguage";

/// Set for a process that only tells how the host starts with that stored language.
const char startVariable[] = "HOST_STARTS_WITH_LANGUAGE";

/// A text in the four languages.
struct Text
{
    const char* where;
    const char* in[4];
};

const Text mainWindowTexts[] = {
    {"aboutButton", {"Info", "About", "À propos", "バージョン情報"}},
    {"actionAbout", {"&Info", "&About", "À &propos", "バージョン情報(&A)"}},
    {"actionAcademy", {"&Akademie", "A&cademy", "A&cadémie", "アカデミー(&C)"}},
    {"actionExport", {"&Exportieren …", "&Export…", "E&xporter…", "書き出し(&E)…"}},
    {"actionExportArchive",
     {"Als &ZIP exportieren …", "Export as &ZIP…", "Exporter en &ZIP…", "ZIP として書き出し(&Z)…"}},
    {"actionGrid", {"&Raster", "&Grid", "&Grille", "グリッド(&G)"}},
    {"actionHandles", {"&Anfasser", "&Handles", "&Poignées", "ハンドル(&H)"}},
    {"actionHelp",
     {"&Hilfe im Internet", "&Help on the Web", "Aide en &ligne", "オンラインヘルプ(&H)"}},
    {"actionHomePage", {"Home&page", "Home &Page", "Page d’acc&ueil", "ホームページ(&P)"}},
    {"actionImport", {"&Importieren …", "&Import…", "&Importer…", "読み込み(&I)…"}},
    {"actionMoveToTrash",
     {"In den &Papierkorb legen …", "Move to &Trash…", "Mettre à la &corbeille…",
      "ゴミ箱に移動(&T)…"}},
    {"actionOpen", {"Ö&ffnen …", "&Open…", "&Ouvrir…", "開く(&O)…"}},
    {"actionPreferences", {"&Einstellungen …", "&Preferences…", "&Préférences…", "環境設定(&P)…"}},
    {"actionQuit", {"&Beenden", "&Quit", "&Quitter", "終了(&Q)"}},
    {"actionReset", {"&Zurücksetzen", "&Reset", "&Réinitialiser", "リセット(&R)"}},
    {"actionSave", {"&Speichern …", "&Save…", "&Enregistrer…", "保存(&S)…"}},
    {"actionShop", {"Sh&op", "Sh&op", "&Boutique", "ショップ(&O)"}},
    {"actionShowInFileManager",
     {"Im Datei&manager anzeigen", "Show in File &Manager",
      "Afficher dans le &gestionnaire de fichiers", "ファイルマネージャーで表示(&M)"}},
    {"actionSupport", {"&Support", "&Support", "&Assistance", "サポート(&S)"}},
    {"actionUndo", {"&Rückgängig", "&Undo", "&Annuler", "取り消す(&U)"}},
    {"amountLabel 1", {"+3,5°", "+3.5°", "+3,5°", "+3.5°"}},
    {"amountLabel 2", {"-20", "-20", "-20", "-20"}},
    {"amountLabel 3", {"0", "0", "0", "0"}},
    {"autoCropCheckBox",
     {"Leere Ecken abschneiden", "Crop empty corners", "Rogner les coins vides",
      "四隅の余白を切り落とす"}},
    {"closeButton", {"Schließen", "Close", "Fermer", "閉じる"}},
    {"distortionSlider, as it is read out", {"Verzeichnung", "Distortion", "Distorsion", "ゆがみ"}},
    {"exportButton", {"Exportieren …", "Export…", "Exporter…", "書き出し…"}},
    {"fileNameLabel", {"small.png", "small.png", "small.png", "small.png"}},
    {"fileSizeLabel", {"2.5KB", "2.5KB", "2.5Ko", "2.5KB"}},
    {"gridCheckBox", {"Raster einblenden", "Show grid", "Afficher la grille", "グリッドを表示"}},
    {"horizonSlider, as it is read out", {"Horizont", "Horizon", "Horizon", "水平"}},
    {"imageSizeLabel", {"60 x 40 px", "60 x 40 px", "60 x 40 px", "60 x 40 px"}},
    {"keystoneSlider, as it is read out",
     {"Stürzende Linien", "Keystone", "Perspective", "台形補正"}},
    {"menu 1", {"&Datei", "&File", "&Fichier", "ファイル(&F)"}},
    {"menu 2", {"&Bearbeiten", "&Edit", "É&dition", "編集(&E)"}},
    {"menu 3", {"&Ansicht", "&View", "&Affichage", "表示(&V)"}},
    {"menu 4", {"&Hilfe", "&Help", "A&ide", "ヘルプ(&H)"}},
    {"openButton", {"Öffnen …", "Open…", "Ouvrir…", "開く…"}},
    {"preferencesButton", {"Einstellungen", "Preferences", "Préférences", "環境設定"}},
    {"resetButton", {"Zurücksetzen", "Reset", "Réinitialiser", "リセット"}},
    {"saveButton", {"Speichern …", "Save…", "Enregistrer…", "保存…"}},
    {"sectionLabel 1", {"Titel", "Title", "Titre", "タイトル"}},
    {"sectionLabel 2", {"Korrekturen", "Corrections", "Corrections", "補正"}},
    {"sliderLabel 1", {"Horizont", "Horizon", "Horizon", "水平"}},
    {"sliderLabel 2", {"Verzeichnung", "Distortion", "Distorsion", "ゆがみ"}},
    {"sliderLabel 3", {"Stürzende Linien", "Keystone", "Perspective", "台形補正"}},
    {"stopButton", {"Stoppen", "Stop", "Arrêter", "中止"}},
    {"titleEdit, as it is read out", {"Titel", "Title", "Titre", "タイトル"}},
    {"titleEdit, while it is empty", {"Ohne Titel", "Untitled", "Sans titre", "名称未設定"}},
};

const Text preferencesTexts[] = {
    {"cancelButton", {"Abbrechen", "Cancel", "Annuler", "キャンセル"}},
    {"dialogTitle", {"Einstellungen", "Preferences", "Préférences", "環境設定"}},
    {"languageCombo, as it is read out", {"Sprache", "Language", "Langue", "言語"}},
    {"languageCombo, item 1", {"Deutsch", "Deutsch", "Deutsch", "Deutsch"}},
    {"languageCombo, item 2", {"English", "English", "English", "English"}},
    {"languageCombo, item 3", {"Français", "Français", "Français", "Français"}},
    {"languageCombo, item 4", {"日本語", "日本語", "日本語", "日本語"}},
    {"languageLabel", {"Sprache", "Language", "Langue", "言語"}},
    {"okButton", {"OK", "OK", "OK", "OK"}},
    {"showImageSizeCheckBox",
     {"Bildgröße anzeigen", "Show the image size", "Afficher la taille de l’image",
      "画像サイズを表示"}},
    {"title of the window", {"Einstellungen", "Preferences", "Préférences", "環境設定"}},
    {"unitsCombo, as it is read out", {"Einheit", "Units", "Unité", "単位"}},
    {"unitsCombo, item 1", {"Pixel", "Pixels", "Pixels", "ピクセル"}},
    {"unitsCombo, item 2", {"Zoll", "Inches", "Pouces", "インチ"}},
    {"unitsCombo, item 3", {"Zentimeter", "Centimetres", "Centimètres", "センチメートル"}},
    {"unitsCombo, item 4", {"Millimeter", "Millimetres", "Millimètres", "ミリメートル"}},
    {"unitsLabel", {"Einheit", "Units", "Unité", "単位"}},
};

using Texts = std::map<QString, QString>;

template <size_t size>
Texts inLanguage(const Text (&table)[size], Language language)
{
    Texts texts;
    for (const Text& text : table)
        texts[QLatin1String(text.where)] = QString::fromUtf8(text.in[language]);
    return texts;
}

/// The widgets of a kind that have texts of their own, from top to bottom and left to right.
template <typename Widget>
QList<Widget*> ownWidgets(const QWidget* window)
{
    QList<Widget*> widgets;
    const auto all = window->findChildren<Widget*>();
    std::copy_if(all.begin(), all.end(), std::back_inserter(widgets), [window](Widget* widget) {
        return widget->window() == window && !widget->objectName().startsWith(QLatin1String("qt_"));
    });
    std::stable_sort(widgets.begin(), widgets.end(), [window](Widget* a, Widget* b) {
        const QPoint p = a->mapTo(window, QPoint());
        const QPoint q = b->mapTo(window, QPoint());
        return p.y() != q.y() ? p.y() < q.y() : p.x() < q.x();
    });
    return widgets;
}

Texts textsOf(const QWidget* window)
{
    Texts texts;
    const auto add = [&texts](const QString& where, const QString& text) {
        if (!text.isEmpty())
            texts[where] = text;
    };

    const auto labels = ownWidgets<QLabel>(window);
    for (const QLabel* label : labels) {
        const QString name = label->objectName();
        const auto hasName = [&name](const QLabel* other) { return other->objectName() == name; };
        if (std::count_if(labels.begin(), labels.end(), hasName) == 1) {
            add(name, label->text());
            continue;
        }
        int number = 1;
        while (texts.count(QStringLiteral("%1 %2").arg(name).arg(number)) > 0)
            ++number;
        add(QStringLiteral("%1 %2").arg(name).arg(number), label->text());
    }
    const auto buttons = ownWidgets<QAbstractButton>(window);
    for (const QAbstractButton* button : buttons) {
        if (!qobject_cast<const QToolButton*>(button)) // which shows a picture only
            add(button->objectName(), button->text());
    }
    const auto combos = ownWidgets<QComboBox>(window);
    for (const QComboBox* combo : combos) {
        add(combo->objectName() + QStringLiteral(", as it is read out"), combo->accessibleName());
        for (int i = 0; i < combo->count(); ++i) {
            add(QStringLiteral("%1, item %2").arg(combo->objectName()).arg(i + 1),
                combo->itemText(i));
        }
    }
    const auto sliders = ownWidgets<QSlider>(window);
    for (const QSlider* slider : sliders)
        add(slider->objectName() + QStringLiteral(", as it is read out"), slider->accessibleName());
    const auto edits = ownWidgets<QLineEdit>(window);
    for (const QLineEdit* edit : edits) {
        add(edit->objectName() + QStringLiteral(", as it is read out"), edit->accessibleName());
        add(edit->objectName() + QStringLiteral(", while it is empty"), edit->placeholderText());
    }
    const auto actions = window->findChildren<QAction*>(QString(), Qt::FindDirectChildrenOnly);
    for (const QAction* action : actions)
        add(action->objectName(), action->text());
    if (const auto* mainWindow = qobject_cast<const QMainWindow*>(window)) {
        int number = 0;
        const auto menus = mainWindow->menuBar()->actions();
        for (const QAction* menu : menus) {
            add(QStringLiteral("menu %1").arg(++number), menu->text());
            const auto own = menu->menu()->actions();
            for (const QAction* action : own)
                add(action->objectName(), action->text());
        }
    } else {
        add(QStringLiteral("title of the window"), window->windowTitle());
    }
    return texts;
}

/// What differs, in words.
QString differences(const Texts& actual, const Texts& expected)
{
    QStringList lines;
    for (const auto& text : expected) {
        const auto found = actual.find(text.first);
        const QString is = found == actual.end() ? QStringLiteral("missing") : found->second;
        if (is != text.second)
            lines << QStringLiteral("%1 is \"%2\", not \"%3\"").arg(text.first, is, text.second);
    }
    for (const auto& text : actual) {
        if (expected.count(text.first) == 0)
            lines << QStringLiteral("%1 is unknown: \"%2\"").arg(text.first, text.second);
    }
    return lines.join(QLatin1Char('\n'));
}

#define VERIFY_SAME_TEXTS(actual, expected)                                                        \
    do {                                                                                           \
        const QString difference = differences(actual, expected);                                  \
        QVERIFY2(difference.isEmpty(), qPrintable(difference));                                    \
    } while (false)

/// What keeps a window's texts from being read in full: places that are too small for them, and
/// widgets that lie over each other or out of their parent.
class ClippedTexts
{
public:
    explicit ClippedTexts(const QWidget* window, const QStringList& mayBeElided = {})
        : m_window(window)
        , m_mayBeElided(mayBeElided)
    {
        checkVisible<QLabel>();
        checkVisible<QAbstractButton>();
        checkVisible<QComboBox>();
        checkVisible<QLineEdit>();
        checkPlaces();
    }

    int checked() const { return m_checked; }
    QString found() const { return m_found.join(QLatin1Char('\n')); }

private:
    template <typename Widget>
    void checkVisible()
    {
        const auto widgets = ownWidgets<Widget>(m_window);
        for (const Widget* widget : widgets) {
            if (widget->isVisible())
                check(widget);
        }
    }

    void require(const QWidget* widget, const QString& text, const QSize& need, const QSize& room)
    {
        m_withText << widget;
        ++m_checked;
        if (need.width() > room.width() || need.height() > room.height()) {
            m_found << QStringLiteral("%1 needs %2 by %3 for \"%4\" and has %5 by %6")
                           .arg(widget->objectName())
                           .arg(need.width())
                           .arg(need.height())
                           .arg(text)
                           .arg(room.width())
                           .arg(room.height());
        }
    }

    void check(const QLabel* label)
    {
        if (label->text().isEmpty() || m_mayBeElided.contains(label->objectName()))
            return;
        const QRect room = label->contentsRect();
        const QFontMetrics metrics = label->fontMetrics();
        const QSize need = label->wordWrap()
            ? metrics.boundingRect(0, 0, room.width(), 10000, Qt::TextWordWrap, label->text())
                  .size()
            : metrics.size(0, label->text());
        require(label, label->text(), need, room.size());
    }

    void check(const QAbstractButton* button)
    {
        if (button->text().isEmpty() || qobject_cast<const QToolButton*>(button))
            return;
        QStyleOptionButton option;
        option.initFrom(button);
        option.text = button->text();
        const bool isCheckBox = qobject_cast<const QCheckBox*>(button);
        const QRect room = button->style()->subElementRect(
            isCheckBox ? QStyle::SE_CheckBoxContents : QStyle::SE_PushButtonContents, &option,
            button);
        require(button, button->text(),
                button->fontMetrics().size(Qt::TextShowMnemonic, button->text()), room.size());
    }

    void check(const QComboBox* combo)
    {
        QStyleOptionComboBox option;
        option.initFrom(combo);
        const QRect room = combo->style()->subControlRect(QStyle::CC_ComboBox, &option,
                                                          QStyle::SC_ComboBoxEditField, combo);
        for (int i = 0; i < combo->count(); ++i) {
            require(combo, combo->itemText(i), combo->fontMetrics().size(0, combo->itemText(i)),
                    room.size());
        }
    }

    void check(const QLineEdit* edit)
    {
        QStyleOptionFrame option;
        option.initFrom(edit);
        const QRect room =
            edit->style()->subElementRect(QStyle::SE_LineEditContents, &option, edit);
        require(edit, edit->placeholderText(),
                edit->fontMetrics().size(0, edit->placeholderText()) + QSize(4, 0), room.size());
    }

    void checkPlaces()
    {
        for (const QWidget* widget : qAsConst(m_withText)) {
            const QRect place(widget->mapTo(m_window, QPoint()), widget->size());
            for (const QWidget* parent = widget->parentWidget(); parent != m_window->parentWidget();
                 parent = parent->parentWidget()) {
                const QRect around(parent->mapTo(m_window, QPoint()), parent->size());
                if (!around.contains(place)) {
                    m_found << QStringLiteral("%1 isn't all within %2")
                                   .arg(widget->objectName(), parent->objectName());
                }
                if (parent == m_window)
                    break;
            }
            for (const QWidget* other : qAsConst(m_withText)) {
                const QRect otherPlace(other->mapTo(m_window, QPoint()), other->size());
                if (widget < other && otherPlace.intersects(place)) {
                    m_found << QStringLiteral("%1 and %2 lie over each other")
                                   .arg(widget->objectName(), other->objectName());
                }
            }
        }
    }

    const QWidget* m_window;
    const QStringList m_mayBeElided;
    QSet<const QWidget*> m_withText;
    QStringList m_found;
    int m_checked = 0;
};

/// Picks a language from the opened list, as a person does at the keyboard.
void choose(QWidget* preferences, Language language)
{
    auto* combo = preferences->findChild<QComboBox*>(QStringLiteral("languageCombo"));
    QVERIFY(combo);
    combo->setFocus();
    combo->showPopup();
    QWidget* list = QApplication::focusWidget();
    QVERIFY(list);
    QTest::keyClick(list, Qt::Key_Home);
    for (int i = 0; i < language; ++i)
        QTest::keyClick(list, Qt::Key_Down);
    QTest::keyClick(list, Qt::Key_Return);
    QCoreApplication::sendPostedEvents(); // which tell windows of the new language
    QCOMPARE(combo->currentIndex(), int(language));
}

void press(const QWidget* dialog, const char* name)
{
    auto* button = dialog->findChild<QPushButton*>(QLatin1String(name));
    QVERIFY2(button, name);
    QTest::mouseClick(button, Qt::LeftButton);
}

void rowForEachLanguage()
{
    QTest::addColumn<int>("language");
    for (const Language language : allLanguages)
        QTest::newRow(languageNames[language]) << int(language);
}

QString standardText(QDialogButtonBox::StandardButton button)
{
    QDialogButtonBox box(button);
    return box.button(button)->text();
}

int storedLanguage()
{
    return CSettings().value(QLatin1String(languageKey)).toInt();
}

/// What the process says that was started to tell how the host starts.
QStringList startTold()
{
    MainWindow window;
    auto* horizon = window.findChild<QSlider*>(QStringLiteral("horizonSlider"));
    horizon->setValue(35);
    return {window.findChild<QPushButton*>(QStringLiteral("openButton"))->text(),
            horizon->accessibleName(),
            textsOf(&window)[QStringLiteral("amountLabel 1")],
            standardText(QDialogButtonBox::Cancel),
            QString::number(qApp->findChildren<QTranslator*>().size()),
            CSettings().value(QLatin1String(languageKey)).toString()};
}

} // namespace

class tst_HostLanguages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void every_text_changes_at_once_data();
    void every_text_changes_at_once();
    void every_text_changes_from_one_language_to_the_next();
    void letters_of_a_menu_differ_data();
    void letters_of_a_menu_differ();
    void the_tips_change_at_once_data();
    void the_tips_change_at_once();
    void the_place_of_a_picture_changes_at_once_data();
    void the_place_of_a_picture_changes_at_once();
    void numbers_follow_the_language_data();
    void numbers_follow_the_language();
    void the_size_of_the_picture_follows_the_language_data();
    void the_size_of_the_picture_follows_the_language();
    void what_is_being_done_changes_at_once_data();
    void what_is_being_done_changes_at_once();

    void buttons_of_qt_data();
    void buttons_of_qt();
    void the_file_dialog_data();
    void the_file_dialog();
    void the_message_boxes_data();
    void the_message_boxes();

    void a_cancelled_choice_goes_back_data();
    void a_cancelled_choice_goes_back();
    void an_accepted_choice_stays_data();
    void an_accepted_choice_stays();
    void a_cancelled_choice_leaves_an_unknown_language_stored();

    void starts_with_what_is_stored_data();
    void starts_with_what_is_stored();

    void no_text_is_clipped_data();
    void no_text_is_clipped();
    void no_text_of_a_message_box_is_clipped_data();
    void no_text_of_a_message_box_is_clipped();
    void no_text_about_files_is_clipped_data();
    void no_text_about_files_is_clipped();

private:
    template <typename T>
    T* child(const char* name) const
    {
        T* found = m_window->findChild<T*>(QLatin1String(name));
        Q_ASSERT(found);
        return found;
    }

    /// Opens the preferences, which are cancelled if \a use doesn't close them.
    void inPreferences(const std::function<void(QDialog*)>& use);

    QTemporaryDir m_dir;
    std::unique_ptr<CTemporarySettings> m_settings;
    std::unique_ptr<MainWindow> m_window;
};

void tst_HostLanguages::initTestCase()
{
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    m_settings = std::make_unique<CTemporarySettings>(nullptr);
    CSettings::setTemporarySettings(*m_settings);
    applyHostStyle(*qApp);

    QVERIFY(m_dir.isValid());
    QImage picture(60, 40, QImage::Format_RGB32);
    picture.fill(Qt::darkGreen);
    const QString file = m_dir.filePath(QStringLiteral("small.png"));
    QVERIFY(picture.save(file)
            && QFile::resize(file, 2560)); // it reads as well with zeros at its end
}

void tst_HostLanguages::init()
{
    CLanguageManager::instance()->changeLanguage(English);
    m_window = std::make_unique<MainWindow>();
    m_window->show();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    QVERIFY(m_window->openPicture(m_dir.filePath(QStringLiteral("small.png"))));
}

void tst_HostLanguages::cleanup()
{
    m_window.reset();
}

void tst_HostLanguages::cleanupTestCase()
{
    CSettings::removeTemporarySettings();
}

void tst_HostLanguages::inPreferences(const std::function<void(QDialog*)>& use)
{
    DialogWatcher watcher(use);
    child<QPushButton>("preferencesButton")->click();
    QCoreApplication::sendPostedEvents();
    QCOMPARE(watcher.count(), 1);
}

void tst_HostLanguages::every_text_changes_at_once_data()
{
    rowForEachLanguage();
}

void tst_HostLanguages::every_text_changes_at_once()
{
    QFETCH(int, language);
    child<QSlider>("horizonSlider")->setValue(35);
    child<QSlider>("distortionSlider")->setValue(-20);
    VERIFY_SAME_TEXTS(textsOf(m_window.get()), inLanguage(mainWindowTexts, English));

    inPreferences([&](QDialog* preferences) {
        VERIFY_SAME_TEXTS(textsOf(preferences), inLanguage(preferencesTexts, English));
        choose(preferences, Language(language));
        VERIFY_SAME_TEXTS(textsOf(preferences), inLanguage(preferencesTexts, Language(language)));
        VERIFY_SAME_TEXTS(textsOf(m_window.get()), inLanguage(mainWindowTexts, Language(language)));
    });
}

void tst_HostLanguages::every_text_changes_from_one_language_to_the_next()
{
    child<QSlider>("horizonSlider")->setValue(35);
    child<QSlider>("distortionSlider")->setValue(-20);
    inPreferences([&](QDialog* preferences) {
        for (const Language language :
             {German, French, Japanese, German, English, Japanese, French, English}) {
            choose(preferences, language);
            VERIFY_SAME_TEXTS(textsOf(preferences), inLanguage(preferencesTexts, language));
            VERIFY_SAME_TEXTS(textsOf(m_window.get()), inLanguage(mainWindowTexts, language));
        }
    });
}

void tst_HostLanguages::letters_of_a_menu_differ_data()
{
    rowForEachLanguage();
}

void tst_HostLanguages::letters_of_a_menu_differ()
{
    QFETCH(int, language);
    CLanguageManager::instance()->changeLanguage(language);
    QCoreApplication::sendPostedEvents();

    QList<QList<QAction*>> menus{m_window->menuBar()->actions()};
    for (const QAction* menu : qAsConst(menus.first()))
        menus << menu->menu()->actions();
    QCOMPARE(menus.size(), 5);
    for (const QList<QAction*>& menu : qAsConst(menus)) {
        QMap<QChar, QString> letters;
        for (const QAction* action : menu) {
            if (action->isSeparator())
                continue;
            const QString text = action->text();
            const QChar letter = text.at(text.indexOf(QLatin1Char('&')) + 1).toUpper();
            QVERIFY2(text.count(QLatin1Char('&')) == 1 && letter >= QLatin1Char('A')
                         && letter <= QLatin1Char('Z'),
                     qPrintable(text));
            QVERIFY2(!letters.contains(letter), qPrintable(letters.value(letter) + " and " + text));
            letters.insert(letter, text);
        }
    }
}

void tst_HostLanguages::the_tips_change_at_once_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<QStringList>("tips");
    QTest::newRow("German") << int(German) << QStringList{"Rückgängig", "Raster", "Anfasser"};
    QTest::newRow("English") << int(English) << QStringList{"Undo", "Grid", "Handles"};
    QTest::newRow("French") << int(French) << QStringList{"Annuler", "Grille", "Poignées"};
    QTest::newRow("Japanese, without the letters of the menu")
        << int(Japanese) << QStringList{"取り消す", "グリッド", "ハンドル"};
}

void tst_HostLanguages::the_tips_change_at_once()
{
    QFETCH(int, language);
    QFETCH(QStringList, tips);
    QStringList shown;
    inPreferences([&](QDialog* preferences) {
        choose(preferences, Language(language));
        for (const char* button : {"undoButton", "gridButton", "handlesButton"})
            shown << child<QToolButton>(button)->toolTip();
    });
    QCOMPARE(shown, tips);
}

void tst_HostLanguages::the_place_of_a_picture_changes_at_once_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<bool>("unreadable");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing, in German") << int(German) << false << "Kein Bild";
    QTest::newRow("nothing, in English") << int(English) << false << "No picture";
    QTest::newRow("nothing, in French") << int(French) << false << "Aucune image";
    QTest::newRow("nothing, in Japanese") << int(Japanese) << false << "画像なし";
    QTest::newRow("unreadable, in German")
        << int(German) << true << "none.png kann nicht geöffnet werden";
    QTest::newRow("unreadable, in English") << int(English) << true << "Cannot open none.png";
    QTest::newRow("unreadable, in French") << int(French) << true << "Impossible d’ouvrir none.png";
    QTest::newRow("unreadable, in Japanese") << int(Japanese) << true << "none.png を開けません";
}

void tst_HostLanguages::the_place_of_a_picture_changes_at_once()
{
    QFETCH(int, language);
    QFETCH(bool, unreadable);
    QFETCH(QString, text);
    m_window = std::make_unique<MainWindow>();
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    if (unreadable)
        QVERIFY(!m_window->openPicture(m_dir.filePath(QStringLiteral("none.png"))));
    inPreferences([&](QDialog* preferences) {
        choose(preferences, Language(language));
        press(preferences, "okButton");
    });

    auto* view = child<PictureView>("pictureView");
    const QImage shown = view->grab().toImage();
    QImage expected(shown.size(), shown.format());
    expected.fill(shown.pixelColor(0, 0));
    {
        QPainter painter(&expected);
        painter.setFont(view->font());
        painter.setPen(view->palette().color(QPalette::WindowText));
        painter.drawText(view->rect(), Qt::AlignCenter, text);
    }
    QCOMPARE(shown, expected);
}

void tst_HostLanguages::numbers_follow_the_language_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("German, to the right") << int(German) << 35 << "+3,5°";
    QTest::newRow("German, to the left") << int(German) << -35 << "-3,5°";
    QTest::newRow("German, nothing") << int(German) << 0 << "0,0°";
    QTest::newRow("English, to the right") << int(English) << 35 << "+3.5°";
    QTest::newRow("English, to the left") << int(English) << -35 << "-3.5°";
    QTest::newRow("English, nothing") << int(English) << 0 << "0.0°";
    QTest::newRow("French, to the right") << int(French) << 35 << "+3,5°";
    QTest::newRow("French, nothing") << int(French) << 0 << "0,0°";
    QTest::newRow("Japanese, to the right") << int(Japanese) << 35 << "+3.5°";
    QTest::newRow("Japanese, as far as it goes") << int(Japanese) << 150 << "+15.0°";
}

void tst_HostLanguages::numbers_follow_the_language()
{
    QFETCH(int, language);
    QFETCH(int, value);
    QFETCH(QString, text);
    auto* slider = child<QSlider>("horizonSlider");
    const auto shown = [this] { return textsOf(m_window.get())[QStringLiteral("amountLabel 1")]; };
    slider->setValue(value);
    inPreferences([&](QDialog* preferences) {
        choose(preferences, Language(language));
        QCOMPARE(shown(), text);
        press(preferences, "okButton");
    });

    // And when the slider moves on.
    slider->setValue(77);
    slider->setValue(value);
    QCOMPARE(shown(), text);
}

void tst_HostLanguages::the_size_of_the_picture_follows_the_language_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<QRegularExpression>("pattern"); // the display's resolution is its own
    // The words are the language's, the numbers are the same everywhere.
    QTest::newRow("German") << int(German) << QRegularExpression("^0\\.\\d\\d x 0\\.\\d\\d Zoll$");
    QTest::newRow("English") << int(English) << QRegularExpression("^0\\.\\d\\d x 0\\.\\d\\d in$");
    QTest::newRow("French") << int(French) << QRegularExpression("^0\\.\\d\\d x 0\\.\\d\\d po$");
    QTest::newRow("Japanese") << int(Japanese)
                              << QRegularExpression("^0\\.\\d\\d x 0\\.\\d\\d インチ$");
}

void tst_HostLanguages::the_size_of_the_picture_follows_the_language()
{
    QFETCH(int, language);
    QFETCH(QRegularExpression, pattern);
    inPreferences([&](QDialog* preferences) {
        choose(preferences, Language(language));
        preferences->findChild<QComboBox*>(QStringLiteral("unitsCombo"))->setCurrentIndex(1);
        press(preferences, "okButton");
    });
    const QString text = child<QLabel>("imageSizeLabel")->text();
    CSettings().remove(g_ImageSizeUnits);
    QVERIFY2(pattern.match(text).hasMatch(), qPrintable(text));
}

void tst_HostLanguages::what_is_being_done_changes_at_once_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("German") << int(
        German) << QStringList{"large.bmp wird korrigiert", "saved.png wird geschrieben"};
    QTest::newRow("French") << int(French)
                            << QStringList{"Correction de large.bmp", "Écriture de saved.png"};
    QTest::newRow("Japanese") << int(Japanese)
                              << QStringList{"large.bmp を補正中", "saved.png を書き込み中"};
}

void tst_HostLanguages::what_is_being_done_changes_at_once()
{
    QFETCH(int, language);
    QFETCH(QStringList, texts);
    const QString large = m_dir.filePath(QStringLiteral("large.bmp"));
    if (!QFile::exists(large))
        QVERIFY(QImage(6000, 4000, QImage::Format_RGB32).save(large));
    QVERIFY(m_window->openPicture(large));
    child<QSlider>("horizonSlider")->setValue(50);

    auto* bar = child<BusyBar>("busyBar");
    auto* doing = bar->findChild<QLabel*>();
    QVERIFY(doing);
    QString shown;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&] {
        if (!bar->isVisible() || QApplication::activeModalWidget())
            return;
        timer.stop();
        child<QPushButton>("preferencesButton")->click();
    });
    timer.start(20);
    DialogWatcher watcher([&](QDialog* dialog) {
        if (auto* fileDialog = qobject_cast<QFileDialog*>(dialog)) {
            fileDialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))
                ->setText(m_dir.filePath(QStringLiteral("saved.png")));
            QMetaObject::invokeMethod(fileDialog, "accept");
        } else if (dialog->objectName() == QLatin1String("preferencesDialog")) {
            choose(dialog, Language(language));
            shown = doing->text();
            press(dialog, "okButton");
            bar->stop();
        }
    });
    m_window->save();

    QVERIFY2(texts.contains(shown), qPrintable(shown));
}

void tst_HostLanguages::buttons_of_qt_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("German") << int(
        German) << QStringList{"OK",  "Abbrechen", "Speichern", "Schließen",  "Verwerfen", "Öffnen",
                               "&Ja", "&Nein",     "Anwenden",  "Ignorieren", "Hilfe"};
    QTest::newRow("English") << int(English)
                             << QStringList{"OK",   "Cancel", "Save",  "Close",  "Discard", "Open",
                                            "&Yes", "&No",    "Apply", "Ignore", "Help"};
    QTest::newRow("French")
        << int(French)
        << QStringList{"OK",     "Annuler", "Enregistrer", "Fermer",    "Ne pas tenir compte",
                       "Ouvrir", "&Oui",    "&Non",        "Appliquer", "Ignorer",
                       "Aide"};
    QTest::newRow("Japanese") << int(
        Japanese) << QStringList{"OK",       "キャンセル", "保存", "閉じる", "変更を破棄", "開く",
                                 "はい(&Y)", "いいえ(&N)", "適用", "無視",   "ヘルプ"};
}

void tst_HostLanguages::buttons_of_qt()
{
    QFETCH(int, language);
    QFETCH(QStringList, texts);
    const QMessageBox::StandardButton buttons[] = {
        QMessageBox::Ok,      QMessageBox::Cancel, QMessageBox::Save, QMessageBox::Close,
        QMessageBox::Discard, QMessageBox::Open,   QMessageBox::Yes,  QMessageBox::No,
        QMessageBox::Apply,   QMessageBox::Ignore, QMessageBox::Help};
    QMessageBox box;
    for (const QMessageBox::StandardButton button : buttons)
        box.addButton(button);
    box.show();
    const auto shown = [&box, &buttons] {
        QStringList shownTexts;
        for (const QMessageBox::StandardButton button : buttons)
            shownTexts << box.button(button)->text();
        return shownTexts;
    };
    QCOMPARE(shown().at(1), QStringLiteral("Cancel"));

    inPreferences([&](QDialog* preferences) {
        choose(preferences, Language(language));
        press(preferences, "okButton");
    });

    // Of a box that was there before, and of one that comes now.
    QCOMPARE(shown(), texts);
    QCOMPARE(standardText(QDialogButtonBox::Cancel), texts.at(1));

    // And back again: English has no catalogue of Qt's, and the last one is gone.
    inPreferences([&](QDialog* preferences) {
        choose(preferences, English);
        press(preferences, "okButton");
    });
    QCOMPARE(shown().at(1), QStringLiteral("Cancel"));
    QCOMPARE(shown().at(4), QStringLiteral("Discard"));
    QCOMPARE(standardText(QDialogButtonBox::Save), QStringLiteral("Save"));
}

void tst_HostLanguages::the_file_dialog_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("German") << int(German)
                            << QStringList{"Bild öffnen", "Datei&name:", "Dateien des Typs:",
                                           "Suchen in:", "Abbrechen"};
    QTest::newRow("English") << int(English)
                             << QStringList{"Open a picture",
                                            "File &name:", "Files of type:", "Look in:", "Cancel"};
    QTest::newRow("French") << int(French)
                            << QStringList{"Ouvrir une image", "&Nom de fichier :",
                                           "Fichiers de type :", "Voir dans :", "Annuler"};
    QTest::newRow("Japanese") << int(Japanese)
                              << QStringList{"画像を開く", "ファイル名(&N):", "ファイルの種類:",
                                             "アドレス:", "キャンセル"};
}

void tst_HostLanguages::the_file_dialog()
{
    QFETCH(int, language);
    QFETCH(QStringList, texts);
    inPreferences([&](QDialog* preferences) {
        choose(preferences, Language(language));
        press(preferences, "okButton");
    });
    QStringList shown;
    DialogWatcher watcher([&shown](QDialog* dialog) {
        const auto label = [dialog](const char* name) {
            return dialog->findChild<QLabel*>(QLatin1String(name))->text();
        };
        auto* buttons = dialog->findChild<QDialogButtonBox*>();
        shown << dialog->windowTitle() << label("fileNameLabel") << label("fileTypeLabel")
              << label("lookInLabel") << buttons->button(QDialogButtonBox::Cancel)->text();
    });
    child<QPushButton>("openButton")->click();
    QCOMPARE(shown, texts);
}

void tst_HostLanguages::the_message_boxes_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<QStringList>("saving"); // text and buttons from left to right
    QTest::addColumn<QStringList>("resetting");
    QTest::addColumn<QStringList>("trashing");
    QTest::newRow("German") << int(German)
                            << QStringList{"Sollen die Änderungen an small.png gespeichert werden?",
                                           "Nicht speichern", "Abbrechen", "Speichern"}
                            << QStringList{"Sollen alle Korrekturen zurückgesetzt werden?", "Nein",
                                           "Ja"}
                            << QStringList{"Soll small.png in den Papierkorb gelegt werden?",
                                           "Nein", "Ja"};
    QTest::newRow("English") << int(
        English) << QStringList{"Save changes to small.png?", "Don't save", "Cancel", "Save"}
                             << QStringList{"Reset all corrections?", "No", "Yes"}
                             << QStringList{"Move small.png to the trash?", "No", "Yes"};
    QTest::newRow("French")
        << int(French)
        << QStringList{"Enregistrer les modifications apportées à small.png\u00a0?",
                       "Ne pas enregistrer", "Annuler", "Enregistrer"}
        << QStringList{"Réinitialiser toutes les corrections\u00a0?", "Non", "Oui"}
        << QStringList{"Mettre small.png à la corbeille\u00a0?", "Non", "Oui"};
    QTest::newRow("Japanese") << int(Japanese)
                              << QStringList{"small.png への変更を保存しますか？", "保存しない",
                                             "キャンセル", "保存"}
                              << QStringList{"すべての補正をリセットしますか？", "いいえ", "はい"}
                              << QStringList{"small.png をゴミ箱に移動しますか？", "いいえ",
                                             "はい"};
}

void tst_HostLanguages::the_message_boxes()
{
    QFETCH(int, language);
    QFETCH(QStringList, saving);
    QFETCH(QStringList, resetting);
    QFETCH(QStringList, trashing);
    inPreferences([&](QDialog* preferences) {
        choose(preferences, Language(language));
        press(preferences, "okButton");
    });

    QList<QStringList> shown;
    DialogWatcher watcher([&shown](QDialog* dialog) {
        QStringList texts(dialog->findChild<QLabel*>(QStringLiteral("textLabel"))->text());
        const auto buttons = ownWidgets<QPushButton>(dialog);
        for (const QPushButton* button : buttons)
            texts << button->text();
        shown << texts;
    });
    child<QLineEdit>("titleEdit")->setText(QStringLiteral("Dogs"));
    m_window->close();
    child<QPushButton>("resetButton")->click();
    child<QAction>("actionMoveToTrash")->trigger();
    QCOMPARE(shown.size(), 3);
    QCOMPARE(shown.at(0), saving);
    QCOMPARE(shown.at(1), resetting);
    QCOMPARE(shown.at(2), trashing);
}

void tst_HostLanguages::a_cancelled_choice_goes_back_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<QString>("way");
    QTest::newRow("to English, by the button") << int(English) << "cancelButton";
    QTest::newRow("to English, by Escape") << int(English) << "Escape";
    QTest::newRow("to English, by closing the window") << int(English) << "close";
    QTest::newRow("to German, by the button") << int(German) << "cancelButton";
    QTest::newRow("to Japanese, by Escape") << int(Japanese) << "Escape";
}

void tst_HostLanguages::a_cancelled_choice_goes_back()
{
    QFETCH(int, before);
    QFETCH(QString, way);
    child<QSlider>("horizonSlider")->setValue(35);
    child<QSlider>("distortionSlider")->setValue(-20);
    CLanguageManager::instance()->changeLanguage(before);

    inPreferences([&](QDialog* preferences) {
        choose(preferences, Japanese);
        choose(preferences, German);
        choose(preferences, French);
        QCOMPARE(storedLanguage(), 1036);
        if (way == QLatin1String("Escape"))
            QTest::keyClick(preferences, Qt::Key_Escape);
        else if (way == QLatin1String("close"))
            preferences->close();
        else
            press(preferences, "cancelButton");
        QVERIFY(!preferences->isVisible());
    });

    QCOMPARE(storedLanguage(), numbers[before]);
    VERIFY_SAME_TEXTS(textsOf(m_window.get()), inLanguage(mainWindowTexts, Language(before)));
    inPreferences([&](QDialog* preferences) {
        QCOMPARE(
            preferences->findChild<QComboBox*>(QStringLiteral("languageCombo"))->currentIndex(),
            before);
        VERIFY_SAME_TEXTS(textsOf(preferences), inLanguage(preferencesTexts, Language(before)));
    });
}

void tst_HostLanguages::an_accepted_choice_stays_data()
{
    rowForEachLanguage();
}

void tst_HostLanguages::an_accepted_choice_stays()
{
    QFETCH(int, language);
    child<QSlider>("horizonSlider")->setValue(35);
    child<QSlider>("distortionSlider")->setValue(-20);
    inPreferences([&](QDialog* preferences) {
        choose(preferences, Language(language));
        press(preferences, "okButton");
        QVERIFY(!preferences->isVisible());
    });
    QCOMPARE(CSettings().value(QLatin1String(languageKey), 1033).toInt(), numbers[language]);
    VERIFY_SAME_TEXTS(textsOf(m_window.get()), inLanguage(mainWindowTexts, Language(language)));

    // A window that comes later has it from the start.
    MainWindow another;
    QCOMPARE(another.findChild<QPushButton*>(QStringLiteral("closeButton"))->text(),
             inLanguage(mainWindowTexts, Language(language))[QStringLiteral("closeButton")]);
}

void tst_HostLanguages::a_cancelled_choice_leaves_an_unknown_language_stored()
{
    CLanguageManager::instance()->setCurrentLanguageNumber(1040);
    inPreferences([&](QDialog* preferences) {
        QCOMPARE(
            preferences->findChild<QComboBox*>(QStringLiteral("languageCombo"))->currentIndex(),
            -1);
        choose(preferences, German);
        press(preferences, "cancelButton");
    });
    const int stored = storedLanguage();
    CLanguageManager::instance()->changeLanguage(English);
    QCOMPARE(stored, 1040);
}

void tst_HostLanguages::starts_with_what_is_stored_data()
{
    QTest::addColumn<QString>("stored");
    // Open button, horizon, its amount, Qt's Cancel, installed translators, what is stored then.
    QTest::addColumn<QStringList>("told");
    QTest::newRow("nothing, which is English without a catalogue of Qt's")
        << "" << QStringList{"Open…", "Horizon", "+3.5°", "Cancel", "1", ""};
    QTest::newRow("German") << "1031" << QStringList{"Öffnen …",  "Horizont", "+3,5°",
                                                     "Abbrechen", "2",        "1031"};
    QTest::newRow("English, which has no catalogue of Qt's")
        << "1033" << QStringList{"Open…", "Horizon", "+3.5°", "Cancel", "1", "1033"};
    QTest::newRow("French") << "1036"
                            << QStringList{"Ouvrir…", "Horizon", "+3,5°", "Annuler", "2", "1036"};
    QTest::newRow("Japanese") << "1041"
                              << QStringList{"開く…", "水平", "+3.5°", "キャンセル", "2", "1041"};
    QTest::newRow("unknown, which stays English and is left stored")
        << "1040" << QStringList{"Open…", "Horizon", "+3.5°", "Cancel", "0", "1040"};
    QTest::newRow("no number, which counts as English")
        << "de" << QStringList{"Open…", "Horizon", "+3.5°", "Cancel", "1", "de"};
}

void tst_HostLanguages::starts_with_what_is_stored()
{
    QFETCH(QString, stored);
    QFETCH(QStringList, told);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QLatin1String(startVariable), stored);
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QCoreApplication::applicationFilePath(), QStringList());
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(QString::fromUtf8(process.readAllStandardOutput()).split(QLatin1Char('\n')), told);
}

void tst_HostLanguages::no_text_is_clipped_data()
{
    rowForEachLanguage();
}

void tst_HostLanguages::no_text_is_clipped()
{
    QFETCH(int, language);
    child<QSlider>("horizonSlider")->setValue(-150);
    child<QSlider>("distortionSlider")->setValue(-100);
    child<QSlider>("keystoneSlider")->setValue(-100);
    inPreferences([&](QDialog* preferences) {
        choose(preferences, Language(language));
        QCoreApplication::processEvents();
        const ClippedTexts clipped(preferences);
        QCOMPARE(clipped.checked(), 14); // 3 labels, 3 buttons, 8 items
        QVERIFY2(clipped.found().isEmpty(), qPrintable(clipped.found()));
        press(preferences, "okButton");
    });
    child<BusyBar>("busyBar")->show();
    QCoreApplication::processEvents();
    const ClippedTexts clipped(m_window.get());
    QCOMPARE(clipped.checked(), 22);
    QVERIFY2(clipped.found().isEmpty(), qPrintable(clipped.found()));

    // A small window leaves out something of a file's name only.
    m_window->resize(m_window->minimumSizeHint());
    QTRY_COMPARE(m_window->width(), m_window->minimumSizeHint().width());
    const ClippedTexts clippedWhenSmall(m_window.get(), {QStringLiteral("fileNameLabel")});
    QCOMPARE(clippedWhenSmall.checked(), 21);
    QVERIFY2(clippedWhenSmall.found().isEmpty(), qPrintable(clippedWhenSmall.found()));
}

void tst_HostLanguages::no_text_of_a_message_box_is_clipped_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<QString>("box");
    QTest::addColumn<int>("texts");
    for (const Language language : allLanguages) {
        const struct
        {
            const char* box;
            int texts;
        } boxes[] = {{"saveDiscardCancel", 4}, {"rotate", 3},        {"yesNo", 3},
                     {"background", 3},        {"information", 2},   {"critical", 2},
                     {"warning", 2},           {"long file name", 4}};
        for (const auto& box : boxes) {
            QTest::newRow(qPrintable(
                QStringLiteral("%1, in %2")
                    .arg(QLatin1String(box.box), QLatin1String(languageNames[language]))))
                << int(language) << box.box << box.texts;
        }
    }
}

void tst_HostLanguages::no_text_of_a_message_box_is_clipped()
{
    QFETCH(int, language);
    QFETCH(QString, box);
    QFETCH(int, texts);
    inPreferences([&](QDialog* preferences) {
        choose(preferences, Language(language));
        press(preferences, "okButton");
    });
    constexpr int height = 165;
    const auto text = [](const char* source) {
        return QCoreApplication::translate("MainWindow", source);
    };
    const QString file = QStringLiteral("20240817_153022_harbour_at_noon.jpg");
    QWidget* parent = m_window.get();

    DialogWatcher watcher([&](QDialog* dialog) {
        QCoreApplication::processEvents();
        QCOMPARE(dialog->size(), QSize(520, height));
        const ClippedTexts clipped(dialog);
        QCOMPARE(clipped.checked(), texts);
        QVERIFY2(clipped.found().isEmpty(), qPrintable(clipped.found()));
    });
    if (box == QLatin1String("saveDiscardCancel")) {
        CMessageBox::saveDiscardCancelMessage(parent, text("Save changes to %1?").arg(file),
                                              height);
    } else if (box == QLatin1String("long file name")) {
        const QString longName = m_dir.filePath(QString(90, QLatin1Char('n')) + ".png");
        QFile::copy(m_dir.filePath(QStringLiteral("small.png")), longName);
        QVERIFY(m_window->openPicture(longName));
        child<QSlider>("keystoneSlider")->setValue(10);
        QVERIFY(!m_window->close());
    } else if (box == QLatin1String("rotate")) {
        CMessageBox::rotateQuestion(parent, text("Rotate the picture?"), height);
    } else if (box == QLatin1String("yesNo")) {
        CMessageBox::yesNoMessage(parent, text("Reset all corrections?"), height);
    } else if (box == QLatin1String("background")) {
        CMessageBox::backgroundProcessingCancelMessage(parent, text("Writing %1").arg(file));
    } else if (box == QLatin1String("information")) {
        CMessageBox::information(parent, text("Saved %1").arg(file), height);
    } else if (box == QLatin1String("critical")) {
        CMessageBox::critical(parent, text("Cannot open %1").arg(file), height);
    } else {
        CMessageBox::warning(parent, text("Cannot save %1").arg(file), height);
    }
    QCOMPARE(watcher.count(), 1);
}

void tst_HostLanguages::no_text_about_files_is_clipped_data()
{
    rowForEachLanguage();
}

void tst_HostLanguages::no_text_about_files_is_clipped()
{
    QFETCH(int, language);
    CLanguageManager::instance()->changeLanguage(language);
    // As long as names in message boxes get.
    const QString file = QStringLiteral("20240817_153022_harbour_at_noon.zip");
    const auto text = [](const char* source) {
        return QCoreApplication::translate("MainWindow", source);
    };
    const auto checkBox = [](int height) {
        return [height](QDialog* dialog) {
            QCoreApplication::processEvents();
            QCOMPARE(dialog->height(), height);
            const ClippedTexts clipped(dialog);
            QVERIFY(clipped.checked() >= 2);
            QVERIFY2(clipped.found().isEmpty(), qPrintable(clipped.found()));
        };
    };

    {
        const DialogWatcher complaints(checkBox(180));
        for (const char* reason :
             {"It is not a ZIP archive.", "It would write outside its folder.",
              "It contains something that cannot be unpacked here.", "It would become too large.",
              "It is damaged.", "Its files cannot be written."}) {
            CMessageBox::critical(
                m_window.get(),
                text("Cannot import %1").arg(file) + QLatin1Char('\n') + text(reason), 180);
        }
        QCOMPARE(complaints.count(), 6);
    }
    const DialogWatcher others(checkBox(165));
    for (const char* message :
         {"There is no trash for %1", "Cannot move %1 to the trash", "No picture in %1"})
        CMessageBox::critical(m_window.get(), text(message).arg(file), 165);
    CMessageBox::yesNoMessage(m_window.get(), text("Move %1 to the trash?").arg(file), 165);
    QCOMPARE(others.count(), 4);
}

int main(int argc, char** argv)
{
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    QCoreApplication::setApplicationVersion(QStringLiteral("3.1"));
    if (qEnvironmentVariableIsSet(startVariable)) {
        CTemporarySettings settings(nullptr);
        CSettings::setTemporarySettings(settings);
        const QString stored = qEnvironmentVariable(startVariable);
        if (!stored.isEmpty())
            CSettings().setValue(QLatin1String(languageKey), stored);
        applyHostStyle(application);
        std::fputs(startTold().join(QLatin1Char('\n')).toUtf8().constData(), stdout);
        CSettings::removeTemporarySettings();
        return 0;
    }
    tst_HostLanguages test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_HostLanguages.moc"

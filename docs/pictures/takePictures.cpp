// Takes the pictures of the documentation: every window of the sample host as it comes up, in the
// four languages.
//
//   takePictures PHOTOGRAPH FOLDER [WINDOW...]

#include "CommonConstants.h"
#include "HostStyle.h"
#include "LanguageManager.h"
#include "MainWindow.h"
#include "MessageBox.h"
#include "Settings.h"
#include "TemporarySettings.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QSlider>
#include <QStandardItemModel>
#include <QTest>
#include <QTimer>

#include <functional>
#include <map>

using namespace VEK_NAMESPACE;

namespace {

constexpr int boxHeight = 165;

class Photographer
{
public:
    Photographer(const QString& folder, const QStringList& wanted)
        : m_folder(folder)
        , m_wanted(wanted)
    {
        QDir().mkpath(folder);
    }

    void take(QWidget* window, const QString& name)
    {
        if (!isWanted(name))
            return;
        QTest::qWait(400); // what is drawn in steps comes to rest
        const QString path = m_folder.filePath(name + QStringLiteral(".png"));
        if (!window->grab().save(path))
            qFatal("cannot write %s", qPrintable(path));
    }

    /// Takes the dialog that \a show brings up, and closes it.
    void takeDialog(const QString& name, const std::function<void()>& show)
    {
        if (!isWanted(name))
            return;
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (!dialog || !dialog->isVisible())
                return;
            timer.stop();
            take(dialog, name);
            dialog->reject();
        });
        timer.start(50);
        show();
    }

    /// Takes the about box, which isn't modal.
    void takeAboutBox(const QString& name, MainWindow* window)
    {
        if (!isWanted(name))
            return;
        window->about();
        auto* box = window->findChild<QWidget*>(QStringLiteral("aboutDlg"));
        if (!QTest::qWaitForWindowActive(box))
            qFatal("the about box doesn't come up");
        take(box, name);
        box->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

private:
    bool isWanted(const QString& name) const
    {
        return m_wanted.isEmpty() || m_wanted.contains(name);
    }

    const QDir m_folder;
    const QStringList m_wanted;
};

/// The product's other modules ask this, so it isn't among the host's texts.
QString quitQuestion(const QString& language)
{
    static const std::map<QString, QString> questions = {
        {"de", QStringLiteral("Ein Bild wird noch gespeichert. Trotzdem beenden?")},
        {"en", QStringLiteral("A picture is still being saved. Quit all the same?")},
        {"fr",
         QStringLiteral("Une image est en cours d’enregistrement. Quitter quand même\u00a0?")},
        {"ja", QStringLiteral("画像を保存しています。それでも終了しますか？")},
    };
    return questions.at(language);
}

/// The box of every kind, with the words of the program that it comes up in.
void takeMessageBoxes(Photographer* photographer, QWidget* parent, const QString& language)
{
    const auto name = [&language](const char* kind) {
        return QStringLiteral("message-box-%1-%2").arg(QLatin1String(kind), language);
    };
    const auto text = [](const char* source) {
        return QCoreApplication::translate("MainWindow", source);
    };
    const QString file = QStringLiteral("harbour.jpg");
    photographer->takeDialog(name("save"), [&] {
        CMessageBox::saveDiscardCancelMessage(parent, text("Save changes to %1?").arg(file),
                                              boxHeight);
    });
    photographer->takeDialog(name("rotate"), [&] {
        CMessageBox::rotateQuestion(parent, text("Rotate the picture?"), boxHeight);
    });
    photographer->takeDialog(name("question"), [&] {
        CMessageBox::yesNoMessage(parent, text("Reset all corrections?"), boxHeight);
    });
    photographer->takeDialog(name("quit"), [&] {
        CMessageBox::backgroundProcessingCancelMessage(parent, quitQuestion(language));
    });
    photographer->takeDialog(name("information"), [&] {
        CMessageBox::information(parent, text("Saved %1").arg(file), boxHeight);
    });
    photographer->takeDialog(name("critical"), [&] {
        CMessageBox::critical(parent, text("Cannot open %1").arg(file), boxHeight);
    });
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    QGuiApplication::setApplicationDisplayName(g_appTitle);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 3)
        qFatal("usage: takePictures PHOTOGRAPH FOLDER [WINDOW...]");

    CTemporarySettings settings("pictures"); // nothing of the user's is read or changed
    CSettings::setTemporarySettings(settings);
    applyHostStyle(application);
    Photographer photographer(arguments[2], arguments.mid(3));
    CLanguageManager* languages = CLanguageManager::instance();

    MainWindow window;
    window.resize(1180, 800);
    window.show();
    if (!QTest::qWaitForWindowActive(&window))
        qFatal("the window doesn't come up");
    photographer.take(&window, QStringLiteral("main-window-empty"));

    window.openPicture(arguments[1]);
    window.findChild<QSlider*>(QStringLiteral("horizonSlider"))->setValue(35);
    window.findChild<QAction*>(QStringLiteral("actionGrid"))->trigger();
    window.findChild<QAction*>(QStringLiteral("actionHandles"))->trigger();
    for (int row = 0; row < languages->model()->rowCount(); ++row) {
        languages->changeLanguage(row);
        const QString language = languages->currentLanguageAbbrv();
        photographer.take(&window, QStringLiteral("main-window-%1").arg(language));
        photographer.takeDialog(QStringLiteral("preferences-%1").arg(language),
                                [&window] { window.editPreferences(); });
        photographer.takeAboutBox(QStringLiteral("about-box-%1").arg(language), &window);
        takeMessageBoxes(&photographer, &window, language);
    }
    return 0;
}

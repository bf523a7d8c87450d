#include "MainWindow.h"

#include "AboutDlg.h"
#include "BusyBar.h"
#include "CommonConstants.h"
#include "CorrectionHandles.h"
#include "CorrectionHistory.h"
#include "CorrectionJob.h"
#include "DelayedCall.h"
#include "HelpMenu.h"
#include "HostLog.h"
#include "HostStyle.h"
#include "MessageBox.h"
#include "Named.h"
#include "NativeDialogs.h"
#include "PerformanceMeauser.h"
#include "PictureArchive.h"
#include "PictureDescription.h"
#include "PictureFile.h"
#include "PictureView.h"
#include "PreferencesDialog.h"
#include "Scripting.h"
#include "Settings.h"
#include "SharedUtils.h"
#include "ToolPanel.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFrame>
#include <QHBoxLayout>
#include <QMenuBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QSlider>
#include <QToolButton>
#include <QVBoxLayout>

using namespace VEK_NAMESPACE;

namespace {

const char gridVisibleKey[] = "gridOverlay.visible";
const char handlesVisibleKey[] = "handles.visible";
constexpr int defaultGridSize = 6;

/// Moves by keys and wheel that come closer together are one undo step.
constexpr int handRestsMs = 400;

/// How often a picture that was asked for tries to be opened.
constexpr int requestWaitsMs = 100;

/// Heights of message boxes for one or two lines of text.
constexpr int simpleBoxHeight = 165;
constexpr int questionBoxHeight = 165;
constexpr int complaintBoxHeight = 180;

/// The product's icon of that name in all its states.
QIcon stateIcon(const char* name)
{
    const QString path = QStringLiteral(":/icons/%1_%2.svg").arg(QLatin1String(name));
    QIcon icon;
    icon.addFile(path.arg(QStringLiteral("idle")));
    icon.addFile(path.arg(QStringLiteral("hover")), QSize(), QIcon::Active);
    icon.addFile(path.arg(QStringLiteral("disabled")), QSize(), QIcon::Disabled);
    const QString checked = path.arg(QStringLiteral("checked"));
    if (QFile::exists(checked)) {
        icon.addFile(checked, QSize(), QIcon::Normal, QIcon::On);
        icon.addFile(checked, QSize(), QIcon::Active, QIcon::On);
    }
    return icon;
}

/// A file's name for a message box, which can't break long ones.
QString nameInMessage(const QString& path)
{
    constexpr int longest = 35;
    QString name = QFileInfo(path).fileName();
    if (name.size() <= longest)
        return name;
    return name.left(longest / 2) + QChar(0x2026) + name.right(longest / 2);
}

/// Why an archive wasn't imported, for its user.
QString importComplaint(ArchiveError error, const QString& name)
{
    const QString complaint = MainWindow::tr("Cannot import %1").arg(name);
    QString reason;
    switch (error) {
    case ArchiveError::NotAnArchive:
        reason = MainWindow::tr("It is not a ZIP archive.");
        break;
    case ArchiveError::UnsafeName:
    case ArchiveError::UnsafeLink:
        reason = MainWindow::tr("It would write outside its folder.");
        break;
    case ArchiveError::UnsupportedEntry:
        reason = MainWindow::tr("It contains something that cannot be unpacked here.");
        break;
    case ArchiveError::TooManyEntries:
    case ArchiveError::TooLarge:
    case ArchiveError::TooCompressed:
        reason = MainWindow::tr("It would become too large.");
        break;
    case ArchiveError::Damaged:
        reason = MainWindow::tr("It is damaged.");
        break;
    case ArchiveError::WriteFailed:
        reason = MainWindow::tr("Its files cannot be written.");
        break;
    case ArchiveError::None:
    case ArchiveError::Stopped:
        break;
    }
    return complaint + QLatin1Char('\n') + reason;
}

/// An action's text for places that show no mnemonic; Japanese has them between parentheses.
QString plainText(QString text)
{
    static const QRegularExpression mnemonic(QStringLiteral("\\(&.\\)|&|…"));
    return text.remove(mnemonic);
}

/// Not every desktop has a key for every standard action.
QKeySequence standardKey(QKeySequence::StandardKey key, const QKeySequence& otherwise)
{
    const QKeySequence sequence(key);
    return sequence.isEmpty() ? otherwise : sequence;
}

} // namespace

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent)
    , m_history(new CorrectionHistory(this))
{
    setObjectName(QStringLiteral("mainWindow"));
    setWindowTitle(g_appTitle);
    setStyleSheet(hostStyleSheet());

    m_view = named<PictureView>("pictureView");
    m_handles = new CorrectionHandles(m_view);
    m_handles->setObjectName(QStringLiteral("handles"));
    m_handles->hide();
    m_busyBar = new BusyBar;
    m_panel = new ToolPanel;

    createActions();
    createMenus();
    auto* left = new QVBoxLayout;
    left->setSpacing(0);
    left->addWidget(createHeader());
    left->addWidget(m_view, 1);

    // Over the view, which so keeps its size.
    auto* overView = new QVBoxLayout(m_view);
    overView->setContentsMargins(0, 0, 0, 0);
    overView->addStretch(1);
    overView->addWidget(m_busyBar);

    auto* central = named<QWidget>("central");
    auto* layout = new QHBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(left, 1);
    layout->addWidget(m_panel);
    setCentralWidget(central);

    connectControls();
    restoreSettings();
    retranslate();
    updateState();
}

MainWindow::~MainWindow()
{
    m_handles->letGo(); // hidden later, they would tell a window that is half gone
}

QFrame* MainWindow::createHeader()
{
    m_openButton = named<QPushButton>("openButton");
    m_description = new PictureDescription;
    m_preferencesButton = named<QPushButton>("preferencesButton");
    m_aboutButton = named<QPushButton>("aboutButton");
    for (QPushButton* button : {m_preferencesButton, m_aboutButton})
        button->setFlat(true);

    auto* header = named<QFrame>("header");
    header->setFixedHeight(60);
    auto* layout = new QHBoxLayout(header);
    layout->setContentsMargins(32, 8, 13, 8); // the last text ends where the first begins
    layout->setSpacing(8);
    layout->addWidget(m_openButton);
    layout->addSpacing(12);
    layout->addWidget(m_description, 1);
    layout->addWidget(createToolButton("undoButton", m_undoAction));
    layout->addWidget(createToolButton("gridButton", m_gridAction));
    layout->addWidget(createToolButton("handlesButton", m_handlesAction));
    layout->addSpacing(12);
    layout->addWidget(m_preferencesButton);
    layout->addWidget(m_aboutButton);
    return header;
}

QToolButton* MainWindow::createToolButton(const char* name, QAction* action)
{
    auto* button = named<QToolButton>(name);
    button->setDefaultAction(action);
    button->setAutoRaise(true); // without it the icon doesn't know the mouse
    button->setIconSize(QSize(24, 24));
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

QAction* MainWindow::createAction(const char* name, const QKeySequence& shortcut, const char* icon)
{
    auto* action = new QAction(this);
    action->setObjectName(QLatin1String(name));
    action->setShortcut(shortcut);
    if (icon) {
        action->setIcon(stateIcon(icon));
        action->setIconVisibleInMenu(false);
    }
    return action;
}

void MainWindow::createActions()
{
    m_openAction = createAction("actionOpen", QKeySequence::Open);
    m_saveAction = createAction("actionSave", QKeySequence::Save);
    m_exportAction = createAction("actionExport", QKeySequence(Qt::CTRL + Qt::Key_E));
    m_exportArchiveAction =
        createAction("actionExportArchive", QKeySequence(Qt::CTRL + Qt::SHIFT + Qt::Key_E));
    m_importAction = createAction("actionImport", QKeySequence(Qt::CTRL + Qt::Key_I));
    m_showInFileManagerAction = createAction("actionShowInFileManager", QKeySequence());
    m_moveToTrashAction = createAction("actionMoveToTrash", QKeySequence::Delete);
    m_quitAction = createAction(
        "actionQuit", standardKey(QKeySequence::Quit, QKeySequence(Qt::CTRL + Qt::Key_Q)));
    m_quitAction->setMenuRole(QAction::QuitRole);
    m_undoAction = createAction("actionUndo", QKeySequence::Undo, "toolbar/undo");
    m_resetAction = createAction("actionReset", QKeySequence(Qt::CTRL + Qt::Key_R));
    m_preferencesAction = createAction(
        "actionPreferences",
        standardKey(QKeySequence::Preferences, QKeySequence(Qt::CTRL + Qt::Key_Comma)));
    m_preferencesAction->setMenuRole(QAction::PreferencesRole);
    m_gridAction =
        createAction("actionGrid", QKeySequence(Qt::CTRL + Qt::Key_G), "leftToolBar/grid");
    m_gridAction->setCheckable(true);
    m_handlesAction =
        createAction("actionHandles", QKeySequence(Qt::CTRL + Qt::Key_L), "horizon/level_line");
    m_handlesAction->setCheckable(true);
    m_aboutAction = createAction("actionAbout", QKeySequence());
    m_aboutAction->setMenuRole(QAction::AboutRole);

    connect(m_openAction, &QAction::triggered, this, &MainWindow::open);
    connect(m_saveAction, &QAction::triggered, this, &MainWindow::save);
    connect(m_exportAction, &QAction::triggered, this, &MainWindow::exportPicture);
    connect(m_exportArchiveAction, &QAction::triggered, this, &MainWindow::exportArchive);
    connect(m_importAction, &QAction::triggered, this, &MainWindow::importArchive);
    connect(m_showInFileManagerAction, &QAction::triggered, this, &MainWindow::showInFileManager);
    connect(m_moveToTrashAction, &QAction::triggered, this, &MainWindow::moveToTrash);
    connect(m_quitAction, &QAction::triggered, this, &QWidget::close);
    connect(m_undoAction, &QAction::triggered, this, &MainWindow::undo);
    connect(m_resetAction, &QAction::triggered, this, &MainWindow::reset);
    connect(m_preferencesAction, &QAction::triggered, this, &MainWindow::editPreferences);
    connect(m_aboutAction, &QAction::triggered, this, &MainWindow::about);
}

void MainWindow::createMenus()
{
    m_fileMenu = menuBar()->addMenu(QString());
    m_fileMenu->addActions({m_openAction, m_importAction});
    m_fileMenu->addSeparator();
    m_fileMenu->addActions({m_saveAction, m_exportAction, m_exportArchiveAction});
    m_fileMenu->addSeparator();
    m_fileMenu->addActions({m_showInFileManagerAction, m_moveToTrashAction});
    m_fileMenu->addSeparator();
    m_fileMenu->addAction(m_quitAction);

    m_editMenu = menuBar()->addMenu(QString());
    m_editMenu->addActions({m_undoAction, m_resetAction});
    m_editMenu->addSeparator();
    m_editMenu->addAction(m_preferencesAction);

    m_viewMenu = menuBar()->addMenu(QString());
    m_viewMenu->addActions({m_gridAction, m_handlesAction});

    m_helpMenu = new HelpMenu(this);
    menuBar()->addMenu(m_helpMenu);
    m_helpMenu->addAction(m_aboutAction);
}

void MainWindow::retranslate()
{
    m_fileMenu->setTitle(tr("&File"));
    m_openAction->setText(tr("&Open…"));
    m_saveAction->setText(tr("&Save…"));
    m_exportAction->setText(tr("&Export…"));
    m_exportArchiveAction->setText(tr("Export as &ZIP…"));
    m_importAction->setText(tr("&Import…"));
    m_showInFileManagerAction->setText(tr("Show in File &Manager"));
    m_moveToTrashAction->setText(tr("Move to &Trash…"));
    m_quitAction->setText(tr("&Quit"));
    m_editMenu->setTitle(tr("&Edit"));
    m_undoAction->setText(tr("&Undo"));
    m_resetAction->setText(tr("&Reset"));
    m_preferencesAction->setText(tr("&Preferences…"));
    m_viewMenu->setTitle(tr("&View"));
    m_gridAction->setText(tr("&Grid"));
    m_handlesAction->setText(tr("&Handles"));
    m_helpMenu->setTitle(tr("&Help"));
    m_aboutAction->setText(tr("&About"));

    for (QAction* action : {m_undoAction, m_gridAction, m_handlesAction}) {
        action->setToolTip(plainText(action->text()));
        action->setIconText(action->toolTip());
    }

    m_openButton->setText(tr("Open…"));
    m_preferencesButton->setText(tr("Preferences"));
    m_aboutButton->setText(tr("About"));
    showPlaceholder();
    m_description->refresh();
}

void MainWindow::showPlaceholder()
{
    m_view->setPlaceholder(m_unreadableName.isEmpty() ? tr("No picture")
                                                      : tr("Cannot open %1").arg(m_unreadableName));
}

void MainWindow::connectControls()
{
    connect(m_openButton, &QPushButton::clicked, this, &MainWindow::open);
    connect(m_preferencesButton, &QPushButton::clicked, this, &MainWindow::editPreferences);
    connect(m_aboutButton, &QPushButton::clicked, this, &MainWindow::about);
    connect(m_panel->saveButton(), &QPushButton::clicked, this, &MainWindow::save);
    connect(m_panel->exportButton(), &QPushButton::clicked, this, &MainWindow::exportPicture);
    connect(m_panel->resetButton(), &QPushButton::clicked, this, &MainWindow::reset);
    connect(m_panel->closeButton(), &QPushButton::clicked, this, &QWidget::close);
    connect(m_busyBar, &BusyBar::busyChanged, this, &MainWindow::updateState);

    connect(m_panel->gridCheckBox(), &QCheckBox::toggled, m_gridAction, &QAction::setChecked);
    connect(m_gridAction, &QAction::toggled, m_panel->gridCheckBox(), &QCheckBox::setChecked);
    connect(m_gridAction, &QAction::toggled, this, &MainWindow::showGrid);

    connect(m_handlesAction, &QAction::toggled, this, &MainWindow::showHandles);
    connect(m_view, &PictureView::frameChanged, this, &MainWindow::placeHandles);
    connect(m_handles, &CorrectionHandles::correctionsDragged, m_panel, &ToolPanel::setCorrections);
    connect(m_handles, &CorrectionHandles::released, this, &MainWindow::recordHandMadeSteps);

    connect(m_panel, &ToolPanel::titleChanged, this, &MainWindow::updateState);
    connect(m_panel, &ToolPanel::correctionsChanged, this, &MainWindow::applyCorrections);

    for (QSlider* slider : m_panel->sliders())
        m_history->watch(slider, "value", slider->accessibleName());
    m_history->watch(m_panel->autoCropCheckBox(), "checked", tr("Crop"));
    connect(m_history, &CorrectionHistory::canUndoChanged, this, &MainWindow::updateState);
    connect(&Singleton<CScripting>::instance(), &CScripting::createUndoCommandForSlider, this,
            &MainWindow::recordUndoStep);
    connect(m_panel->autoCropCheckBox(), &QCheckBox::clicked, this,
            &MainWindow::recordHandMadeSteps);
    connect(m_panel, &ToolPanel::sliderMoved, this, [this](bool atRest) {
        if (atRest) {
            recordHandMadeSteps();
            return;
        }
        m_handMadeStep = true;
        updateState();
        CDelayedCall::invoke(handRestsMs, this, "recordHandMadeSteps", true);
    });
}

void MainWindow::restoreSettings()
{
    const CSettings settings;
    m_view->setGridSize(settings.value(g_gridOverlaySize, defaultGridSize).toInt());
    m_gridAction->setChecked(settings.value(QLatin1String(gridVisibleKey), false).toBool());
    m_handlesAction->setChecked(settings.value(QLatin1String(handlesVisibleKey), false).toBool());
}

bool MainWindow::openPicture(const QString& path)
{
    const QImage picture = readPicture(path);
    if (picture.isNull()) {
        m_unreadableName = QFileInfo(path).fileName();
        showPlaceholder();
        return false;
    }
    showPicture(picture, path);
    return true;
}

void MainWindow::open()
{
    if (m_busyBar->isBusy())
        return;
    const QString path = Singleton<CNativeDialogs>::instance().getOpenFileName(
        this, tr("Open a picture"), QFileInfo(m_path).absolutePath(), readablePicturesFilter());
    if (!path.isEmpty())
        openAfterQuestions(path);
}

void MainWindow::openOnRequest(const QString& path)
{
    m_requestedPath = path;
    openRequested();
}

void MainWindow::openRequested()
{
    if (m_requestedPath.isEmpty())
        return;
    if (m_busyBar->isBusy() || QApplication::activeModalWidget()) {
        CDelayedCall::invoke(requestWaitsMs, this, "openRequested", true);
        return;
    }
    const QString path = m_requestedPath;
    m_requestedPath.clear();
    openAfterQuestions(path);
}

void MainWindow::openAfterQuestions(const QString& path)
{
    QImage picture = readPicture(path);
    if (picture.isNull()) {
        CMessageBox::critical(this, tr("Cannot open %1").arg(nameInMessage(path)), simpleBoxHeight);
        return;
    }
    if (!mayDiscardPicture())
        return;
    if (picture.height() > picture.width()
        && CMessageBox::rotateQuestion(this, tr("Rotate the picture?"), questionBoxHeight)) {
        const QString title = pictureTitle(picture);
        picture = picture.transformed(QTransform().rotate(90.0));
        picture.setText(QStringLiteral("Title"), title);
    }
    showPicture(picture, path);
}

void MainWindow::showPicture(const QImage& picture, const QString& path)
{
    logLine(QStringLiteral("Opened %1, %2").arg(path, sizeToString(picture.size())));
    m_handles->letGo();
    m_picture = picture;
    m_path = path;
    m_unreadableName.clear();
    setWindowTitle(QStringLiteral("%1[*] – %2").arg(QFileInfo(path).fileName(), g_appTitle));
    m_panel->setTitle(pictureTitle(picture));
    m_panel->setCorrections(Corrections());
    m_savedTitle = m_panel->title();
    m_savedCorrections = m_panel->corrections();
    m_handMadeStep = false;
    m_history->restart();

    m_view->setPicture(picture);
    m_description->setPicture(path, picture.size());
    updateState();
}

void MainWindow::closePicture()
{
    m_handles->letGo();
    m_picture = QImage();
    m_path.clear();
    m_panel->setTitle(QString());
    m_panel->setCorrections(Corrections());
    m_handMadeStep = false;
    m_history->restart();

    m_view->setPicture(m_picture);
    m_description->clear();
    setWindowTitle(g_appTitle);
    placeHandles();
    updateState();
}

bool MainWindow::canUsePicture() const
{
    return !m_picture.isNull() && !m_busyBar->isBusy();
}

bool MainWindow::save()
{
    if (!canUsePicture())
        return false;
    const QFileInfo file(m_path);
    const QString proposal = file.absoluteDir().filePath(
        file.completeBaseName() + QStringLiteral("-corrected.") + file.suffix());
    const QString path = Singleton<CNativeDialogs>::instance().getSaveFileName(
        this, tr("Save the picture"), proposal, writablePicturesFilter());
    if (path.isEmpty())
        return false;

    // The user may go on while the picture is being written.
    const QString title = m_panel->title();
    const Corrections corrections = m_panel->corrections();
    if (!writeCorrected(path, title))
        return false;
    m_savedTitle = title;
    m_savedCorrections = corrections;
    updateState();
    CMessageBox::information(this, tr("Saved %1").arg(nameInMessage(path)), simpleBoxHeight);
    return true;
}

void MainWindow::exportPicture()
{
    if (!canUsePicture())
        return;
    const QFileInfo file(m_path);
    const QString folder = Singleton<CNativeDialogs>::instance().getExistingDirectory(
        this, tr("Export the corrected picture to"), file.absolutePath());
    if (folder.isEmpty())
        return;
    writeCorrected(
        QDir(folder).filePath(file.completeBaseName() + QStringLiteral("-corrected.png")),
        m_panel->title());
}

void MainWindow::exportArchive()
{
    if (!canUsePicture())
        return;
    const QFileInfo file(m_path);
    const QString baseName = file.completeBaseName() + QStringLiteral("-corrected");
    const QString path = Singleton<CNativeDialogs>::instance().getSaveFileName(
        this, tr("Export the corrected picture with its settings"),
        file.absoluteDir().filePath(baseName + QStringLiteral(".zip")), archivesFilter());
    if (path.isEmpty())
        return;

    const QString title = m_panel->title();
    const Corrections corrections = m_panel->corrections();
    QImage corrected;
    if (!correct(&corrected))
        return;
    ArchiveExport work(corrected, title, corrections, baseName, path);
    const QString name = QFileInfo(path).fileName();
    if (m_busyBar->run(work, [&name] { return tr("Writing %1").arg(name); })
        == BusyBar::Outcome::Failed) {
        complainAboutSaving(path);
    }
}

void MainWindow::importArchive()
{
    if (m_busyBar->isBusy())
        return;
    const QString path = Singleton<CNativeDialogs>::instance().getOpenFileName(
        this, tr("Import an archive"), QFileInfo(m_path).absolutePath(), archivesFilter());
    if (path.isEmpty())
        return;

    const QString name = QFileInfo(path).fileName();
    ArchiveImport work(path);
    connect(&work, &ArchiveImport::progressChanged, m_busyBar, &BusyBar::setProgress);
    const BusyBar::Outcome outcome =
        m_busyBar->run(work, [&name] { return tr("Unpacking %1").arg(name); });
    if (outcome == BusyBar::Outcome::Stopped)
        return;
    if (outcome == BusyBar::Outcome::Failed) {
        logLine(QStringLiteral("Not imported: %1, %2: %3")
                    .arg(path, work.result().entry, work.result().reason));
        CMessageBox::critical(this, importComplaint(work.result().error, nameInMessage(path)),
                              complaintBoxHeight);
    } else if (work.picture().isEmpty()) {
        CMessageBox::information(this, tr("No picture in %1").arg(nameInMessage(path)),
                                 simpleBoxHeight);
    } else {
        openAfterQuestions(work.picture());
    }
}

void MainWindow::showInFileManager()
{
    if (!m_picture.isNull())
        selectFilesInShell(QFileInfo(m_path).absolutePath(),
                           {QFileInfo(m_path).absoluteFilePath()});
}

void MainWindow::moveToTrash()
{
    if (!canUsePicture())
        return;
    if (CMessageBox::yesNoMessage(this, tr("Move %1 to the trash?").arg(nameInMessage(m_path)),
                                  questionBoxHeight)
        != QMessageBox::Yes) {
        return;
    }
    switch (moveFileToTrash(m_path)) {
    case 0:
        logLine(QStringLiteral("Moved to the trash: %1").arg(m_path));
        closePicture();
        break;
    case 1:
        CMessageBox::critical(this, tr("There is no trash for %1").arg(nameInMessage(m_path)),
                              simpleBoxHeight);
        break;
    default:
        CMessageBox::critical(this, tr("Cannot move %1 to the trash").arg(nameInMessage(m_path)),
                              simpleBoxHeight);
    }
}

/// False if it was stopped. Correcting doesn't fail.
bool MainWindow::correct(QImage* corrected)
{
    CorrectionJob job(m_picture, m_panel->corrections());
    connect(&job, &CorrectionJob::progressChanged, m_busyBar, &BusyBar::setProgress);
    connect(
        &job, &CorrectionJob::corrected, this,
        [corrected](const QImage& picture) { *corrected = picture; }, Qt::DirectConnection);
    QString line;
    BusyBar::Outcome outcome = BusyBar::Outcome::Stopped;
    {
        const CPerformanceMeauser timer(QDebug(&line).noquote(), QStringLiteral("correction"));
        outcome = m_busyBar->run(
            job, [this] { return tr("Correcting %1").arg(QFileInfo(m_path).fileName()); });
    }
    logLine(line.trimmed());
    return outcome == BusyBar::Outcome::Done;
}

/// False if it was stopped or couldn't be written; the latter has been told then.
bool MainWindow::writeCorrected(const QString& path, const QString& title)
{
    QImage corrected;
    if (!correct(&corrected))
        return false;
    const QString name = QFileInfo(path).fileName();
    PictureWriter writer(corrected, title, path, hostGround());
    const BusyBar::Outcome outcome =
        m_busyBar->run(writer, [&name] { return tr("Writing %1").arg(name); });
    if (outcome == BusyBar::Outcome::Failed)
        complainAboutSaving(path);
    return outcome == BusyBar::Outcome::Done;
}

void MainWindow::complainAboutSaving(const QString& path)
{
    CMessageBox::critical(this, tr("Cannot save %1").arg(nameInMessage(path)), simpleBoxHeight);
}

void MainWindow::reset()
{
    if (CMessageBox::yesNoMessage(this, tr("Reset all corrections?"), questionBoxHeight)
        != QMessageBox::Yes)
        return;
    recordHandMadeSteps();
    m_panel->setCorrections(Corrections());
    m_history->recordAll(tr("Reset"));
}

void MainWindow::undo()
{
    recordHandMadeSteps();
    m_history->undo();
}

void MainWindow::recordUndoStep(const QString& slider)
{
    m_history->record(slider);
}

void MainWindow::recordHandMadeSteps()
{
    CDelayedCall::discard(this, "recordHandMadeSteps");
    m_handMadeStep = false;
    m_history->recordAll(tr("Corrections"));
    updateState();
}

void MainWindow::editPreferences()
{
    PreferencesDialog dialog(this);
    if (dialog.exec() == QDialog::Accepted)
        m_description->refresh();
}

void MainWindow::about()
{
    (new CAboutDlg(this))->show(); // deletes itself
}

void MainWindow::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QMainWindow::changeEvent(event);
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (m_busyBar->isBusy()) {
        // What runs the work is further up the stack and has to end first.
        m_busyBar->stop();
        event->ignore();
        CDelayedCall::invoke(0, this, "close", true);
        return;
    }
    event->setAccepted(mayDiscardPicture());
}

bool MainWindow::isChanged() const
{
    return !m_picture.isNull()
        && (m_panel->title() != m_savedTitle || m_panel->corrections() != m_savedCorrections);
}

/// Whether the picture may go: it is unchanged, or saved now, or the user gives its changes up.
bool MainWindow::mayDiscardPicture()
{
    if (!isChanged())
        return true;
    switch (CMessageBox::saveDiscardCancelMessage(
        this, tr("Save changes to %1?").arg(nameInMessage(m_path)), questionBoxHeight)) {
    case QMessageBox::Save:
        return save();
    case QMessageBox::Discard:
        return true;
    default:
        return false;
    }
}

void MainWindow::applyCorrections()
{
    m_view->setCorrections(m_panel->corrections());
    m_handles->setCorrections(m_panel->corrections());
    updateState();
}

void MainWindow::showGrid(bool visible)
{
    m_view->setGridVisible(visible);
    CSettings().setValue(QLatin1String(gridVisibleKey), visible);
}

void MainWindow::showHandles(bool visible)
{
    placeHandles();
    CSettings().setValue(QLatin1String(handlesVisibleKey), visible);
}

void MainWindow::placeHandles()
{
    m_handles->setGeometry(m_view->rect());
    m_handles->setFrame(m_view->frame());
    m_handles->setVisible(m_handlesAction->isChecked() && !m_picture.isNull());
}

void MainWindow::updateState()
{
    const bool idle = !m_busyBar->isBusy();
    const bool savable = idle && !m_picture.isNull();
    m_openAction->setEnabled(idle);
    m_openButton->setEnabled(idle);
    m_saveAction->setEnabled(savable);
    m_panel->saveButton()->setEnabled(savable);
    m_exportAction->setEnabled(savable);
    m_exportArchiveAction->setEnabled(savable);
    m_importAction->setEnabled(idle);
    m_showInFileManagerAction->setEnabled(!m_picture.isNull());
    m_moveToTrashAction->setEnabled(savable);
    m_panel->exportButton()->setEnabled(savable);
    m_undoAction->setEnabled(m_history->canUndo() || m_handMadeStep);
    setWindowModified(isChanged());
}

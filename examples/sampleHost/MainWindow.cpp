#include "MainWindow.h"

#include "BusyBar.h"
#include "CommonConstants.h"
#include "CorrectionHandles.h"
#include "CorrectionHistory.h"
#include "CorrectionJob.h"
#include "DelayedCall.h"
#include "HostLog.h"
#include "HostStyle.h"
#include "MessageBox.h"
#include "Named.h"
#include "NativeDialogs.h"
#include "PictureFile.h"
#include "PictureView.h"
#include "PreferencesDialog.h"
#include "Scripting.h"
#include "Settings.h"
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
#include <QLabel>
#include <QLocale>
#include <QMenuBar>
#include <QPainter>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QSlider>
#include <QStyle>
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

/// Shortens a long text in the middle, where it doesn't tell files apart.
class ElidedLabel : public QLabel
{
protected:
    QSize minimumSizeHint() const override { return {40, QLabel::minimumSizeHint().height()}; }

    void paintEvent(QPaintEvent* event) override
    {
        Q_UNUSED(event)
        QPainter painter(this);
        style()->drawItemText(&painter, rect(), int(alignment()), palette(), isEnabled(),
                              fontMetrics().elidedText(text(), Qt::ElideMiddle, width()),
                              foregroundRole());
    }
};

/// The size in the unit that the user has chosen.
QString imageSizeText(const QSize& size)
{
    struct Unit
    {
        const char* word;
        double perInch; ///< 0 for pixels
        int decimals;
    };
    static const Unit units[] = {{"px", 0.0, 0}, {"in", 1.0, 2}, {"cm", 2.54, 1}, {"mm", 25.4, 0}};
    const int chosen = CSettings().value(g_ImageSizeUnits, 0).toInt();
    const Unit& unit = units[chosen > 0 && chosen < 4 ? chosen : 0];

    const QScreen* screen = QGuiApplication::primaryScreen();
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    const auto text = [&](int pixels, double dpi) {
        const double value = unit.perInch > 0.0 ? pixels * unit.perInch / dpi : pixels;
        return locale.toString(value, 'f', unit.decimals);
    };
    return QStringLiteral("%1 x %2 %3")
        .arg(text(size.width(), int(screen->physicalDotsPerInchX())),
             text(size.height(), int(screen->physicalDotsPerInchY())), QLatin1String(unit.word));
}

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
    m_fileNameLabel = named<ElidedLabel>("fileNameLabel");
    m_imageSizeLabel = named<QLabel>("imageSizeLabel");
    m_preferencesButton = named<QPushButton>("preferencesButton");
    m_aboutButton = named<QPushButton>("aboutButton");
    for (QPushButton* button : {m_preferencesButton, m_aboutButton})
        button->setFlat(true);

    auto* description = new QVBoxLayout;
    description->setSpacing(1);
    description->addStretch(1);
    description->addWidget(m_fileNameLabel);
    description->addWidget(m_imageSizeLabel);
    description->addStretch(1);

    auto* header = named<QFrame>("header");
    header->setFixedHeight(60);
    auto* layout = new QHBoxLayout(header);
    layout->setContentsMargins(32, 8, 13, 8); // the last text ends where the first begins
    layout->setSpacing(8);
    layout->addWidget(m_openButton);
    layout->addSpacing(12);
    layout->addLayout(description, 1);
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
    connect(m_quitAction, &QAction::triggered, this, &QWidget::close);
    connect(m_undoAction, &QAction::triggered, this, &MainWindow::undo);
    connect(m_resetAction, &QAction::triggered, this, &MainWindow::reset);
    connect(m_preferencesAction, &QAction::triggered, this, &MainWindow::editPreferences);
    connect(m_aboutAction, &QAction::triggered, this, &MainWindow::about);
}

void MainWindow::createMenus()
{
    m_fileMenu = menuBar()->addMenu(QString());
    m_fileMenu->addActions({m_openAction, m_saveAction, m_exportAction});
    m_fileMenu->addSeparator();
    m_fileMenu->addAction(m_quitAction);

    m_editMenu = menuBar()->addMenu(QString());
    m_editMenu->addActions({m_undoAction, m_resetAction});
    m_editMenu->addSeparator();
    m_editMenu->addAction(m_preferencesAction);

    m_viewMenu = menuBar()->addMenu(QString());
    m_viewMenu->addActions({m_gridAction, m_handlesAction});

    m_helpMenu = menuBar()->addMenu(QString());
    m_helpMenu->addAction(m_aboutAction);
}

void MainWindow::retranslate()
{
    m_fileMenu->setTitle(tr("&File"));
    m_openAction->setText(tr("&Open…"));
    m_saveAction->setText(tr("&Save…"));
    m_exportAction->setText(tr("&Export…"));
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
    showImageSize();
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
    logLine(QStringLiteral("Opened %1, %2").arg(path, imageSizeText(picture.size())));
    m_handles->letGo();
    m_picture = picture;
    m_path = path;
    m_unreadableName.clear();
    m_panel->setTitle(pictureTitle(picture));
    m_panel->setCorrections(Corrections());
    m_savedTitle = m_panel->title();
    m_savedCorrections = m_panel->corrections();
    m_handMadeStep = false;
    m_history->restart();

    m_view->setPicture(picture);
    const QString name = QFileInfo(path).fileName();
    m_fileNameLabel->setText(name);
    m_fileNameLabel->setToolTip(name);
    showImageSize();
    setWindowTitle(QStringLiteral("%1[*] – %2").arg(name, g_appTitle));
    updateState();
}

bool MainWindow::save()
{
    if (m_picture.isNull() || m_busyBar->isBusy())
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
    if (m_picture.isNull() || m_busyBar->isBusy())
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

/// False if it was stopped or couldn't be written; the latter has been told then.
bool MainWindow::writeCorrected(const QString& path, const QString& title)
{
    const QString name = QFileInfo(path).fileName();
    QImage corrected;
    CorrectionJob correction(m_picture, m_panel->corrections());
    connect(&correction, &CorrectionJob::progressChanged, m_busyBar, &BusyBar::setProgress);
    connect(
        &correction, &CorrectionJob::corrected, this,
        [&corrected](const QImage& picture) { corrected = picture; }, Qt::DirectConnection);
    BusyBar::Outcome outcome = m_busyBar->run(
        correction, [this] { return tr("Correcting %1").arg(QFileInfo(m_path).fileName()); });
    if (outcome == BusyBar::Outcome::Done) {
        PictureWriter writer(corrected, title, path, hostGround());
        outcome = m_busyBar->run(writer, [&name] { return tr("Writing %1").arg(name); });
    }
    if (outcome != BusyBar::Outcome::Failed)
        return outcome == BusyBar::Outcome::Done;
    CMessageBox::critical(this, tr("Cannot save %1").arg(nameInMessage(path)), simpleBoxHeight);
    return false;
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
        showImageSize();
}

void MainWindow::about()
{
    CMessageBox::information(
        this, tr("%1\nVersion %2").arg(g_appTitle, QCoreApplication::applicationVersion()),
        simpleBoxHeight);
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
    m_panel->exportButton()->setEnabled(savable);
    m_undoAction->setEnabled(m_history->canUndo() || m_handMadeStep);
    setWindowModified(isChanged());
}

void MainWindow::showImageSize()
{
    m_imageSizeLabel->setVisible(!m_picture.isNull()
                                 && CSettings().value(g_showImageSize, true).toBool());
    if (!m_picture.isNull())
        m_imageSizeLabel->setText(imageSizeText(m_picture.size()));
}

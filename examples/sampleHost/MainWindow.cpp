#include "MainWindow.h"

#include "CommonConstants.h"
#include "PictureView.h"
#include "Settings.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QFrame>
#include <QHBoxLayout>
#include <QImageReader>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QPushButton>
#include <QSlider>
#include <QStyle>
#include <QVBoxLayout>

using namespace VEK_NAMESPACE;

namespace {

const char gridVisibleKey[] = "gridOverlay.visible";
constexpr int defaultGridSize = 6;

/// Shortens a long text in the middle, where it doesn't tell files apart.
class ElidedLabel : public QLabel
{
protected:
    void paintEvent(QPaintEvent* event) override
    {
        Q_UNUSED(event)
        QPainter painter(this);
        style()->drawItemText(&painter, rect(), int(alignment()), palette(), isEnabled(),
                              fontMetrics().elidedText(text(), Qt::ElideMiddle, width()),
                              foregroundRole());
    }
};

template <typename W, typename... Args>
W* named(const char* name, Args... args)
{
    W* widget = new W(args...);
    widget->setObjectName(QLatin1String(name));
    return widget;
}

} // namespace

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent)
{
    setObjectName(QStringLiteral("mainWindow"));
    setWindowTitle(g_appTitle);

    m_view = named<PictureView>("pictureView");
    m_view->setPlaceholder(tr("No picture"));

    QWidget* central = named<QWidget>("central");
    auto* layout = new QHBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_view, 1);
    layout->addWidget(createToolPanel());
    setCentralWidget(central);

    restoreSettings();
}

QFrame* MainWindow::createToolPanel()
{
    m_fileNameLabel = named<ElidedLabel>("fileNameLabel");
    m_imageSizeLabel = named<QLabel>("imageSizeLabel");

    m_angleLabel = named<QLabel>("angleLabel");
    m_angleLabel->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_horizonSlider = named<QSlider>("horizonSlider", Qt::Horizontal);
    m_horizonSlider->setRange(-150, 150);
    m_horizonSlider->setPageStep(10);
    m_gridCheckBox = named<QCheckBox>("gridCheckBox", tr("Grid"));
    auto* resetButton = named<QPushButton>("resetButton", tr("Reset"));

    connect(m_horizonSlider, &QSlider::valueChanged, this, &MainWindow::showAngle);
    connect(m_gridCheckBox, &QCheckBox::toggled, this, &MainWindow::showGrid);
    connect(resetButton, &QPushButton::clicked, this, &MainWindow::resetCorrections);
    showAngle(0);

    auto* heading = new QHBoxLayout;
    heading->addWidget(named<QLabel>("horizonTitle", tr("Horizon")));
    heading->addWidget(m_angleLabel);

    auto* panel = named<QFrame>("toolPanel");
    panel->setFixedWidth(264);
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins(20, 24, 20, 20);
    layout->setSpacing(8);
    layout->addWidget(m_fileNameLabel);
    layout->addWidget(m_imageSizeLabel);
    layout->addSpacing(24);
    layout->addLayout(heading);
    layout->addWidget(m_horizonSlider);
    layout->addSpacing(8);
    layout->addWidget(m_gridCheckBox);
    layout->addStretch(1);
    layout->addWidget(resetButton);
    return panel;
}

void MainWindow::restoreSettings()
{
    const CSettings settings;
    m_view->setGridSize(settings.value(g_gridOverlaySize, defaultGridSize).toInt());
    m_gridCheckBox->setChecked(settings.value(QLatin1String(gridVisibleKey), false).toBool());
}

bool MainWindow::openPicture(const QString& path)
{
    const QString name = QFileInfo(path).fileName();
    QImageReader reader(path);
    reader.setAutoTransform(true);
    const QImage picture = reader.read();
    if (picture.isNull()) {
        m_view->setPlaceholder(tr("Cannot open %1").arg(name));
        return false;
    }

    m_view->setPicture(picture);
    m_fileNameLabel->setText(name);
    m_fileNameLabel->setToolTip(name);
    m_imageSizeLabel->setText(tr("%1 × %2 pixels").arg(picture.width()).arg(picture.height()));
    setWindowTitle(QStringLiteral("%1 – %2").arg(name, g_appTitle));
    return true;
}

void MainWindow::resetCorrections()
{
    m_horizonSlider->setValue(0);
}

void MainWindow::showAngle(int tenthsOfDegree)
{
    const double degrees = tenthsOfDegree / 10.0;
    m_view->setAngle(degrees);
    m_angleLabel->setText(QLocale().toString(degrees, 'f', 1) + QChar(0x00B0));
}

void MainWindow::showGrid(bool visible)
{
    m_view->setGridVisible(visible);
    CSettings().setValue(QLatin1String(gridVisibleKey), visible);
}

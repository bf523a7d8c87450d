#include "PictureDescription.h"

#include "CommonConstants.h"
#include "Named.h"
#include "Settings.h"
#include "SharedUtils.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QStyle>
#include <QVBoxLayout>

using namespace VEK_NAMESPACE;

namespace {

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

} // namespace

PictureDescription::PictureDescription(QWidget* parent)
    : QWidget(parent)
    , m_fileName(named<ElidedLabel>("fileNameLabel"))
    , m_imageSize(named<QLabel>("imageSizeLabel"))
    , m_fileSize(named<QLabel>("fileSizeLabel"))
{
    auto* sizes = new QHBoxLayout;
    sizes->setSpacing(12);
    sizes->addWidget(m_imageSize);
    sizes->addWidget(m_fileSize);
    sizes->addStretch(1);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(1);
    layout->addStretch(1);
    layout->addWidget(m_fileName);
    layout->addLayout(sizes);
    layout->addStretch(1);
    refresh();
}

void PictureDescription::setPicture(const QString& path, const QSize& size)
{
    m_path = path;
    m_size = size;
    const QString name = QFileInfo(path).fileName();
    m_fileName->setText(name);
    m_fileName->setToolTip(name);
    refresh();
}

void PictureDescription::clear()
{
    setPicture(QString(), QSize());
}

void PictureDescription::refresh()
{
    const bool present = !m_path.isEmpty();
    m_imageSize->setVisible(present && CSettings().value(g_showImageSize, true).toBool());
    m_fileSize->setVisible(present);
    if (!present)
        return;
    m_imageSize->setText(sizeToString(m_size));
    m_fileSize->setText(fileSizeToString(QFileInfo(m_path).size()));
    const QDateTime created = getFileCreationDate(m_path);
    m_fileSize->setToolTip(
        created.isNull() ? QString()
                         : tr("Created %1").arg(QLocale().toString(created, QLocale::ShortFormat)));
}

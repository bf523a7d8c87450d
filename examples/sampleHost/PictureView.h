#pragma once

#include <QImage>
#include <QPixmap>
#include <QWidget>

/// Shows a picture, straightened by an angle and cropped so that no corner stays empty, with a grid
/// over it on request.
class PictureView : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(double angle READ angle WRITE setAngle NOTIFY angleChanged)
    Q_PROPERTY(bool gridVisible READ isGridVisible WRITE setGridVisible NOTIFY gridVisibleChanged)
    Q_PROPERTY(int pictureWidth READ pictureWidth NOTIFY pictureChanged)
    Q_PROPERTY(int pictureHeight READ pictureHeight NOTIFY pictureChanged)

public:
    explicit PictureView(QWidget* parent = nullptr);

    void setPicture(const QImage& picture);
    int pictureWidth() const;
    int pictureHeight() const;

    /// Shown while there is no picture.
    void setPlaceholder(const QString& text);

    /// Degrees, clockwise.
    double angle() const;
    void setAngle(double degrees);

    bool isGridVisible() const;
    void setGridVisible(bool visible);

    /// How many fields the grid has in each direction.
    void setGridSize(int fields);

    QSize sizeHint() const override;

Q_SIGNALS:
    void pictureChanged();
    void gridVisibleChanged(bool visible);
    void angleChanged(double degrees);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private Q_SLOTS:
    void renderPreview();

private:
    QRectF frame() const;
    void paintPicture(QPainter& painter, const QRectF& target) const;
    void paintGrid(QPainter& painter, const QRectF& target) const;

    QImage m_picture;
    QPixmap m_preview; ///< the picture at the size that is shown
    QString m_placeholder;
    double m_angle = 0.0;
    bool m_gridVisible = false;
    int m_gridSize = 6;
};

#pragma once

#include "Corrections.h"

#include <QImage>
#include <QPixmap>
#include <QThreadPool>
#include <QWidget>

#include <memory>

class CorrectionJob;

/// Shows a picture as its corrections make it, with a grid over it on request.
///
/// It corrects a copy of screen size, so that it follows a slider at once. Where that copy is
/// large, a rougher one comes first, and the fine one, made off the GUI thread, when the hand
/// rests.
class PictureView : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(double angle READ angle NOTIFY correctionsChanged)
    Q_PROPERTY(bool gridVisible READ isGridVisible WRITE setGridVisible NOTIFY gridVisibleChanged)
    Q_PROPERTY(int pictureWidth READ pictureWidth NOTIFY pictureChanged)
    Q_PROPERTY(int pictureHeight READ pictureHeight NOTIFY pictureChanged)

public:
    explicit PictureView(QWidget* parent = nullptr);
    ~PictureView() override;

    void setPicture(const QImage& picture);
    int pictureWidth() const;
    int pictureHeight() const;

    /// Shown while there is no picture.
    void setPlaceholder(const QString& text);

    void setCorrections(const Corrections& corrections);

    /// Degrees, clockwise.
    double angle() const;

    bool isGridVisible() const;
    void setGridVisible(bool visible);

    /// How many fields the grid has in each direction.
    void setGridSize(int fields);

    /// Where the picture is shown.
    QRectF frame() const;

    QSize sizeHint() const override;

Q_SIGNALS:
    void pictureChanged();
    void frameChanged();
    void gridVisibleChanged(bool visible);
    void correctionsChanged();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private Q_SLOTS:
    void copyForScreen();
    void refine();

private:
    void correct();
    void stopRefining();
    void showCorrected(const QImage& picture);
    void paintGrid(QPainter* painter) const;

    QImage m_picture;
    Corrections m_corrections;
    QImage m_fineCopy; ///< the picture at the size that is shown
    QImage m_roughCopy; ///< small enough to be corrected while a slider moves
    QPixmap m_shown;
    QPixmap m_gridPattern;
    QString m_placeholder;
    bool m_gridVisible = false;
    int m_gridSize = 6;
    QThreadPool m_pool;
    std::unique_ptr<CorrectionJob> m_refining;
    int m_refinement = 0; ///< number of the job whose result is wanted
};

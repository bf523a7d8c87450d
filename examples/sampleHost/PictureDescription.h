#pragma once

#include <QSize>
#include <QString>
#include <QWidget>

class QLabel;

/// What a picture's file is called, and how large picture and file are, in the user's units.
class PictureDescription : public QWidget
{
    Q_OBJECT

public:
    explicit PictureDescription(QWidget* parent = nullptr);

    void setPicture(const QString& path, const QSize& size);
    /// Describes no picture.
    void clear();

    /// Shows the sizes anew, when units or language have changed.
    void refresh();

private:
    QLabel* m_fileName = nullptr;
    QLabel* m_imageSize = nullptr;
    QLabel* m_fileSize = nullptr;
    QString m_path;
    QSize m_size;
};

#pragma once

#include <QImage>
#include <QMetaType>

#include <functional>

/// What is mended in a picture. The amounts don't depend on the picture's size: a copy of screen
/// size shows what the full picture will look like.
struct Corrections
{
    double horizon = 0.0; ///< degrees by which the picture is turned, clockwise
    double distortion = 0.0; ///< -1 to 1; above 0 straightens lines that bulge outwards
    double keystone = 0.0; ///< -1 to 1; above 0 straightens verticals that meet above the picture
    bool autoCrop = true;

    /// Whether pictures stay as they are.
    bool isIdentity() const;
};

/// Whether both make the same of every picture.
bool operator==(const Corrections& a, const Corrections& b);
bool operator!=(const Corrections& a, const Corrections& b);

/// The greatest part of a corrected picture of \a size that has its aspect ratio, lies about its
/// centre and has no empty corner, as a factor of its width and height. It is above 1 where the
/// picture has grown on all sides.
double cropScale(const Corrections& corrections, const QSize& size);

/// How the work on a picture is watched. Empty functions are left out.
struct CorrectionWatch
{
    std::function<bool()> stopRequired; ///< called on several threads at once
    std::function<void(int percent)> progress; ///< called on the calling thread, never falling
};

/// The corrected picture, of the same size, or a null one if it was stopped. With auto crop the
/// part that cropScale() gives fills it, without it empty corners are transparent. Without anything
/// to correct it is \a picture itself; otherwise it has 8 bits a channel, and resolution, texts and
/// colour space of \a picture. Works on all cores. Any thread.
QImage correctPicture(const QImage& picture, const Corrections& corrections,
                      const CorrectionWatch& watch = CorrectionWatch());

Q_DECLARE_METATYPE(Corrections)

#pragma once

#include "UtilsDllGlobal.h"

class QImage;

namespace VEK_NAMESPACE {

/// Compares two pictures of 32 bits per pixel by their red, green and blue; alpha doesn't count.
/// Other formats are not converted, and their result means nothing.
///
/// The difference grows by |a - b| / 255 for each channel of each pixel and is scaled to percent of
/// all channels at the end of each row and once more at the end, so that the last rows weigh far
/// more than the first ones. It is stored in \a diff, which may be null, from the first row on.
///
/// Returns 0 if a picture is null, 1 if the sizes differ, 2 if the difference is below \a tolerance
/// and 3 if it isn't: equal to the tolerance counts as different. Any thread.
UTILSDLL_EXPORT int compareImages(const QImage& image1, const QImage& image2, double* diff,
                                  double tolerance);

} // namespace VEK_NAMESPACE

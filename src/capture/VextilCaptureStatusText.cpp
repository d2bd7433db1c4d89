#include "capture/VextilCaptureStatusText.h"

#include "core/VextilTexts.h"

#include <cmath>

QString VextilCaptureStatusText::compose(const QString &instruction, double progress, bool progressShown, bool smile)
{
    if (smile)
        return VextilTexts::tr("SMILE!");
    const int taken = int(std::lround(progress * kNeutralPhotos));
    if (!progressShown || taken <= 0 || taken > kNeutralPhotos)
        return instruction;
    return VextilTexts::tr("%1, photo %2 of %3").arg(instruction).arg(taken).arg(kNeutralPhotos);
}

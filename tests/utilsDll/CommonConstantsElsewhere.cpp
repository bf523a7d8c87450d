#include "CommonConstantsElsewhere.h"

QVector<const QString*> commonConstantsElsewhere()
{
    return commonConstantsHere();
}

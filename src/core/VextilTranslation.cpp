#include "core/VextilTranslation.h"

#include <QCoreApplication>

QString translated(const char *english)
{
    return QCoreApplication::translate("VextilToolkit", english);
}

#include <VextilToolkit/VextilError.h>

#include "core/VextilStringsTable.h"

namespace {
const QString kTablePath = QStringLiteral(":/VextilToolkit/VextilToolkitError.strings");
}

QString VextilError::domainName() { return QStringLiteral("com.VextilToolkit"); }

VextilError VextilError::createVextilSDKErrorWithCode(int code)
{
    const VextilStringsTable table = VextilStringsTable::read(kTablePath);
    return {domainName(), code, table.require(QStringLiteral("%1-description").arg(code)),
            table.require(QStringLiteral("%1-recovery").arg(code))};
}

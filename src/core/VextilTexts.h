#pragma once

#include <QCoreApplication>

/// The toolkit's user-visible texts. `VextilTexts::tr("English text")` looks the text up in the
/// context "VextilToolkit" of the installed translators (the toolkit's own, see
/// VextilToolkitSettings::installTranslations, and any of the host's); without a translation it is
/// the English text itself. lupdate reads these calls into translations/vextiltoolkit.ts. Any thread.
class VextilTexts {
    Q_DECLARE_TR_FUNCTIONS(VextilToolkit)
};

#pragma once

#include <QString>

/// A user-visible text of the toolkit, translated by the host's QTranslator in the context
/// "VextilToolkit"; without a translation, the English text itself. Any thread.
QString translated(const char *english);

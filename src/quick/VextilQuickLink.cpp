// Compiled into every program that links Vextil::Quick. Linkers drop a shared library a program
// calls nothing of; this reference keeps the module's library, and with it the registration of
// `import VextilToolkit`, in every such program, with no import path to set.
void qml_register_types_VextilToolkit();

namespace {
[[maybe_unused]] void (*volatile const vextilQuickTypes)() = &qml_register_types_VextilToolkit;
}

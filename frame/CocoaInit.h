#pragma once

/// Obtains the family's registry and has the family's exception support prepared, each once. What
/// no sibling plug-in offers yet is tried again on the next call.
void CocoaInit();

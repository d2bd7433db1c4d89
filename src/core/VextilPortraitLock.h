#pragma once

#include <VextilToolkit/VextilToolkitExport.h>

/// Keeps a phone in portrait while any of the toolkit's screens shows, and gives the host's own
/// orientation back when the last one goes. Held by count, from the GUI thread only.
/// On Android it sets the activity's requested orientation (and restores the host's); Qt offers
/// iOS no way to do so at run time, so there the host's Info.plist decides (see the README).
/// Elsewhere only the count is kept. Exported for the Qt Quick module; not part of the API.
class VEXTIL_EXPORT VextilPortraitLock {
public:
    /// One more screen wants portrait; the first asks the platform for it.
    static void acquire();
    /// One screen less; the last gives the host's orientation back.
    static void release();
    /// Whether any screen holds the lock.
    static bool isHeld();
};

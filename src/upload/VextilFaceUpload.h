#pragma once

#include <VextilToolkit/VextilRepository.h>
#include <VextilToolkit/VextilToolkitExport.h>

/// Sends the stored face capture, as every face's send does: the images stay in the store for a
/// retry unless the upload succeeded. Exported for the Qt Quick module; not part of the API.
class VEXTIL_EXPORT VextilFaceUpload {
public:
    /// The callback runs once, with the service's answer or the error, on the thread the
    /// repository answers on (see VextilRepository::sendDataWithDataType).
    static void send(VextilRepository::SendCallback callback);
};

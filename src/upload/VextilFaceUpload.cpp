#include "upload/VextilFaceUpload.h"

void VextilFaceUpload::send(VextilRepository::SendCallback callback)
{
    VextilRepository::sharedInstance()->sendDataWithDataType(
        VextilDataTypeFace, [callback = std::move(callback)](std::optional<QVariantMap> answer, std::optional<VextilError> error) {
            if (!error)
                VextilRepository::sharedInstance()->resetFaceImages();
            if (callback)
                callback(std::move(answer), std::move(error));
        });
}

#include "upload/VextilUploadAnswer.h"

#include <QJsonDocument>
#include <QJsonObject>

std::optional<QVariantMap> VextilUploadAnswer::decode(const QByteArray &body)
{
    const QJsonDocument answer = QJsonDocument::fromJson(body);
    if (!answer.isObject())
        return std::nullopt;
    return answer.object().toVariantMap();
}

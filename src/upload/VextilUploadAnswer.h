#pragma once

#include <QByteArray>
#include <QVariantMap>

#include <optional>

/// What the upload service's answer to a successful upload says.
class VextilUploadAnswer {
public:
    /// The answer's JSON object as a map; nothing for anything else (not JSON, or not an object).
    static std::optional<QVariantMap> decode(const QByteArray &body);
};

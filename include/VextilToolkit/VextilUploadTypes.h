#pragma once

#include <QtGlobal>

/// What an upload carries.
enum VextilDataType : quint64 {
    VextilDataTypeDocument = 0,         ///< document images only
    VextilDataTypeFace = 1,             ///< face images only (what the facade sends)
    VextilDataTypeDocumentAndFace = 2,  ///< document images, then face images
};

/// The kind of identity document held in the store.
enum VextilDocumentType : quint64 {
    VextilDocumentTypeUnspecified = 0,       ///< front required, back optional
    VextilDocumentTypeRG = 1,                ///< front and back
    VextilDocumentTypeCNH = 2,               ///< front only
    VextilDocumentTypeGeneric = 3,           ///< front only
    VextilDocumentTypeGenericFrontBack = 4,  ///< front and back
};

/// Which side of a document the review screen shows.
enum VextilDocumentSide : quint64 {
    VextilDocumentSideFront = 0,
    VextilDocumentSideBack = 1,
};

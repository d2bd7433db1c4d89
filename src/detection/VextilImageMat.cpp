#include "detection/VextilImageMat.h"

VextilImageMat::VextilImageMat(const QImage &image)
    : m_image(image.format() == QImage::Format_RGB32 || image.format() == QImage::Format_ARGB32
                  ? image
                  : image.convertToFormat(QImage::Format_RGB32))
{
    if (!m_image.isNull())
        m_mat = cv::Mat(m_image.height(), m_image.width(), CV_8UC4, const_cast<uchar *>(m_image.constBits()),
                        size_t(m_image.bytesPerLine()));
}

#include "PictureCheck.h"

#include <QGuiApplication>
#include <QDir>
#include <QFontDatabase>
#include <QPainter>

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace {

bool updating()
{
    return qgetenv("VEXTIL_UPDATE_PICTURES") == "1";
}

}  // namespace

QString PictureCheck::referencePath(const QString &name)
{
    return QStringLiteral(VEXTIL_PICTURES_DIR "/%1.png").arg(name);
}

QString PictureCheck::failurePath(const QString &name, const QString &kind)
{
    const QDir folder(QStringLiteral(VEXTIL_PICTURE_FAILURES_DIR));
    folder.mkpath(QStringLiteral("."));
    return folder.filePath(QStringLiteral("%1-%2.png").arg(name, kind));
}

PictureCheck::Change PictureCheck::changeBetween(const QImage &a, const QImage &b, QImage *difference) const
{
    if (a.size() != b.size() || a.isNull())
        return {};
    const QImage x = a.convertToFormat(QImage::Format_RGB32), y = b.convertToFormat(QImage::Format_RGB32);
    if (difference) {
        *difference = x;
        QPainter(difference).fillRect(difference->rect(), QColor(255, 255, 255, 200));
    }
    const int columns = (x.width() + tileSide - 1) / tileSide;
    std::vector<int> tiles(size_t(columns) * size_t((x.height() + tileSide - 1) / tileSide), 0);
    qint64 changed = 0;
    for (int row = 0; row < x.height(); ++row) {
        const auto *p = reinterpret_cast<const QRgb *>(x.constScanLine(row));
        const auto *q = reinterpret_cast<const QRgb *>(y.constScanLine(row));
        for (int column = 0; column < x.width(); ++column) {
            const int delta = std::max({std::abs(qRed(p[column]) - qRed(q[column])),
                                        std::abs(qGreen(p[column]) - qGreen(q[column])),
                                        std::abs(qBlue(p[column]) - qBlue(q[column]))});
            if (delta <= tolerance)
                continue;
            ++changed;
            ++tiles[size_t(row / tileSide) * size_t(columns) + size_t(column / tileSide)];
            if (difference)
                difference->setPixel(column, row, qRgb(255, 0, 0));
        }
    }
    const int worst = tiles.empty() ? 0 : *std::max_element(tiles.begin(), tiles.end());
    return {double(changed) / (double(x.width()) * x.height()), double(worst) / (tileSide * tileSide)};
}

::testing::AssertionResult PictureCheck::matches(const QImage &rendered, const QString &name) const
{
    if (rendered.isNull())
        return ::testing::AssertionFailure() << name.toStdString() << ": nothing was rendered";
    const QString reference = referencePath(name);
    if (updating()) {
        QDir().mkpath(QFileInfo(reference).path());
        if (!rendered.save(reference))
            return ::testing::AssertionFailure() << "could not write " << reference.toStdString();
        return ::testing::AssertionSuccess() << "updated";
    }
    const QImage expected(reference);
    if (expected.isNull()) {
        rendered.save(failurePath(name, QStringLiteral("rendered")));
        return ::testing::AssertionFailure() << "no reviewed picture " << reference.toStdString()
                                             << " (scripts/update-pictures.sh makes it)";
    }
    QImage difference;
    const Change change = changeBetween(rendered, expected, &difference);
    if (change.share <= changedShare && change.worstTile <= tileShare)
        return ::testing::AssertionSuccess();
    rendered.save(failurePath(name, QStringLiteral("rendered")));
    if (!difference.isNull())
        difference.save(failurePath(name, QStringLiteral("difference")));
    return ::testing::AssertionFailure()
           << name.toStdString() << ": " << change.share * 100 << "% of the picture changed (at most "
           << changedShare * 100 << "% may), " << change.worstTile * 100 << "% of its most changed tile (at most "
           << tileShare * 100 << "% may); see " << failurePath(name, QStringLiteral("difference")).toStdString();
}

void usePictureFont()
{
    static const bool installed = [] {
        const int id = QFontDatabase::addApplicationFont(QStringLiteral("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"));
        QFontDatabase::addApplicationFont(QStringLiteral("/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf"));
        if (id < 0)
            return false;
        QFont font(QFontDatabase::applicationFontFamilies(id).value(0));
        font.setHintingPreference(QFont::PreferNoHinting);
        QGuiApplication::setFont(font);
        return true;
    }();
    if (!installed)
        ADD_FAILURE() << "the picture font (fonts-dejavu-core) is missing";
}

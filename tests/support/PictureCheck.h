#pragma once

#include <QImage>
#include <QString>

#include <gtest/gtest.h>

// Compares a rendered screen with its reviewed picture in tests/pictures/NAME.png. A pixel has
// changed when it differs by more than `tolerance` in some channel. Two pictures match when at
// most `changedShare` of all pixels changed and no tile of `tileSide` pixels square has more than
// `tileShare` of its pixels changed: anti-aliasing moves single pixels here and there, while a
// wrong colour, a lost text or a moved part changes a patch, however small the patch is beside
// a large screen. On a mismatch the rendering and a difference picture (changed pixels red
// over a faded copy) go to the build's picture-failures folder, named after the picture.
// With VEXTIL_UPDATE_PICTURES=1 the rendering becomes the reviewed picture instead.
struct PictureCheck {
    int tolerance = 40;
    double changedShare = 0.004;
    int tileSide = 12;
    double tileShare = 0.2;

    ::testing::AssertionResult matches(const QImage &rendered, const QString &name) const;

    static QString referencePath(const QString &name);
    static QString failurePath(const QString &name, const QString &kind);
    struct Change {
        double share = 1;      ///< of all pixels; 1 when the sizes differ
        double worstTile = 1;  ///< share of the most changed tile
    };
    Change changeBetween(const QImage &a, const QImage &b, QImage *difference) const;
};

// The fixed font every picture is drawn in (DejaVu Sans, from fonts-dejavu-core): installed as
// the application's font once, before any screen is built.
void usePictureFont();

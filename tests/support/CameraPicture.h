#pragma once

#include <QImage>

// A fixed camera picture for screens compared with reviewed pictures: a drawn head and
// shoulders before a wall, 720x1280 like a phone's front camera, neutral or smiling. Drawn the
// same on every run, unlike a decoded video frame.
QImage cameraPicture(bool smiling = false, QSize size = QSize(720, 1280));

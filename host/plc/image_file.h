// Memory images in files.
#ifndef PLC_IMAGE_FILE_H
#define PLC_IMAGE_FILE_H

#include "image.h"

namespace plc
{
/// Either an image, or why the file cannot be read.
struct LoadedImage {
    Image image = {};
    QString error = {};
};

LoadedImage loadImage(const QString& path, const QList<int>& stations);
/// Replaces the file as a whole or leaves it as it was. @return what went wrong; empty when nothing
QString saveImage(const QString& path, const Controller& controller);
/// Whether a file can be saved there, without saving one. @return as saveImage
QString trySaving(const QString& path);
} // namespace plc

#endif

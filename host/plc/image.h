// Memory images: lines "STATION AREA FIRST = VALUE..." that an engineer reads, writes and compares.
#ifndef PLC_IMAGE_H
#define PLC_IMAGE_H

#include "controller.h"

#include <QString>
#include <QStringList>

namespace plc
{
/// Values of neighbouring elements of one area.
struct ImageRun {
    int station = 0;
    int area = 0; ///< AreaCode
    int first = 0;
    QVector<quint16> values = {}; ///< of bits 0 or 1
};

/// The good lines, and of each wrong one where and what was expected.
struct Image {
    QList<ImageRun> runs = {};
    QStringList errors = {}; ///< "NAME:LINE:COLUMN: expected ...", both from 1 on
};

/// @param name of the file, for the errors
/// @param stations those that the image may speak of
Image parseImage(const QString& name, const QString& text, const QList<int>& stations);
/// Writes the runs, in their order, into stations that exist; the rest of the memory stays.
void applyImage(const Image& image, Controller& controller);
/// The same memory always gives the same text: by station and area in rows at fixed addresses, each
/// from its first to its last value that is not 0. Parsing it gives the memory back.
QString imageText(const Controller& controller);
} // namespace plc

#endif

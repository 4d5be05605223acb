// What a peer holds, and its notation in the cases: cells such as "coil8=0110" and
// "register10=7,0xffff", the first at the address, separated by blanks.
#pragma once

#include <QMap>
#include <QStringList>
#include <QVector>

/// The cells of each area, COIL, INPUT and REGISTER, from address 0.
using Image = QMap<QString, QVector<int>>;

inline const QString COIL = QStringLiteral("coil");
inline const QString INPUT = QStringLiteral("input");
inline const QString REGISTER = QStringLiteral("register");

inline constexpr int CELLS = 256; ///< of each area; a peer refuses what lies beyond

/// An image in which no cell of the register area is like another, and no byte of bits like the
/// next.
Image background();

/// Sets the cells that are written in `text`; a fault of the notation is fatal.
void setCells(const QByteArray& text, Image* image);

/// The cells in which the images differ, separated by "; ".
QString differences(const Image& held, const Image& expected);

#include "image.h"

#include <QRegularExpression>

namespace
{

constexpr int COIL_PERIOD = 3, INPUT_PERIOD = 5;
constexpr int FIRST_WORD = 0x1234, WORD_STEP = 0x0101, HIGHEST_WORD = 0xFFFF;
constexpr int HEX_BASE = 16;

QVector<int> valuesOf(const QString& area, const QString& text)
{
    const bool isWords = area == REGISTER;
    const QString separator = isWords ? QStringLiteral(",") : QString();
    const int highest = isWords ? HIGHEST_WORD : 1;
    QVector<int> values;
    for (const QString& part : text.split(separator, Qt::SkipEmptyParts)) {
        bool good = false;
        values << part.toInt(&good, 0);
        if (!good || values.last() > highest)
            qFatal("expected 0 to %d, not %s", highest, qPrintable(part));
    }
    return values;
}

} // namespace

Image background()
{
    Image image;
    for (int i = 0; i < CELLS; ++i) {
        image[COIL] << (i % COIL_PERIOD == 0 ? 1 : 0);
        image[INPUT] << (i % INPUT_PERIOD == 0 ? 1 : 0);
        image[REGISTER] << ((FIRST_WORD + WORD_STEP * i) & HIGHEST_WORD);
    }
    return image;
}

void setCells(const QByteArray& text, Image* image)
{
    static const QRegularExpression cells(
        QStringLiteral("\\A(coil|input|register)(\\d+)=([0-9a-fx,]+)\\z"));
    for (const QString& token :
         QString::fromUtf8(text).split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const QRegularExpressionMatch match = cells.match(token);
        const QString area = match.captured(1);
        const int first = match.captured(2).toInt();
        const QVector<int> values = valuesOf(area, match.captured(3));
        if (!match.hasMatch() || first + values.size() > CELLS)
            qFatal("not cells of the peer: %s", qPrintable(token));
        for (int i = 0; i < values.size(); ++i)
            (*image)[area][first + i] = values[i];
    }
}

QString differences(const Image& held, const Image& expected)
{
    QStringList cells;
    for (const QString& area : {COIL, INPUT, REGISTER}) {
        const QVector<int> is = held[area], wanted = expected[area];
        if (is.size() != wanted.size())
            cells << QStringLiteral("%1s: %2, not %3").arg(area).arg(is.size()).arg(wanted.size());
        for (int i = 0; i < qMin(is.size(), wanted.size()); ++i) {
            if (is[i] != wanted[i])
                cells << QStringLiteral("%1 %2: 0x%3, not 0x%4")
                             .arg(area)
                             .arg(i)
                             .arg(is[i], 0, HEX_BASE)
                             .arg(wanted[i], 0, HEX_BASE);
        }
    }
    return cells.join(QLatin1String("; "));
}

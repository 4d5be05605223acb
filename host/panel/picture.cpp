#include "picture.h"

#include <algorithm>

namespace
{

constexpr int EVENTS_SHOWN = 5;
constexpr int LINES_BESIDE_TABLE = 4; // status, fail, heading; prompt

/// Texts joined with two blanks to lines of at most `columns`.
QStringList wrapped(const QStringList& texts, int columns)
{
    QStringList lines;
    for (const QString& text : texts) {
        if (!lines.isEmpty() && lines.last().size() + 2 + text.size() <= columns)
            lines.last() += QStringLiteral("  ") + text;
        else
            lines << text;
    }
    return lines;
}

bool isAlert(Quality quality)
{
    return quality == Quality::Stale || quality == Quality::Failed || quality == Quality::NoAnswer;
}

void addTable(const Panel& panel, View* view, int rows, Micros now, QVector<PictureLine>* lines)
{
    int& first = view->keys.firstRow;
    first = std::min(first, lastFirstRow(panel, rows));
    const int end = std::min(panel.tags.size(), first + rows);
    for (int i = first; i < end; ++i)
        *lines << PictureLine{tagLine(panel, i, view->tagRates.value(i).perSecond, now),
                              isAlert(qualityAt(panel, i, now)) ? Emphasis::Alert
                                                                : Emphasis::Plain};
}

/// The range stands in the column of the names, where a narrow terminal shows it, too.
QString headingWithRange(const Panel& panel, const View& view, int rows)
{
    QString heading = tagHeading();
    if (panel.tags.size() <= rows)
        return heading;
    const int first = view.keys.firstRow;
    const QString range =
        QStringLiteral("TAG %1-%2/%3").arg(first + 1).arg(first + rows).arg(panel.tags.size());
    return heading.replace(0, range.size(), range);
}

/// Lines of the stations, no more than a third of the screen: those with trouble come first.
QStringList stationLines(const Panel& panel, const ScreenSize& size, Micros now)
{
    const int most = std::max(1, size.rows / 3);
    const QStringList lines = wrapped(stationTexts(panel, now), size.columns);
    if (lines.size() <= most)
        return lines;
    return QStringList(lines.mid(0, most - 1))
           << QStringLiteral("%1 more lines of stations").arg(lines.size() - most + 1);
}

} // namespace

int tableRows(const Panel& panel, const ScreenSize& size, Micros now)
{
    const int stations = stationLines(panel, size, now).size();
    return std::max(1, size.rows - LINES_BESIDE_TABLE - stations - EVENTS_SHOWN);
}

int lastFirstRow(const Panel& panel, int tableRows)
{
    return std::max(0, panel.tags.size() - tableRows);
}

QVector<PictureLine> picture(const Panel& panel, View* view, const ScreenSize& size, Micros now)
{
    const bool down = !panel.link.device;
    QVector<PictureLine> lines;
    lines << PictureLine{statusLine(panel, now), down ? Emphasis::Alert : Emphasis::Plain};
    for (const QString& text : stationLines(panel, size, now))
        lines << PictureLine{text, Emphasis::Plain};
    lines << PictureLine{QStringLiteral("last fail callback: ") +
                             (panel.lastFail.isEmpty() ? QStringLiteral("none") : panel.lastFail),
                         Emphasis::Plain};

    const int rows = tableRows(panel, size, now);
    QVector<PictureLine> table;
    addTable(panel, view, rows, now, &table);
    lines << PictureLine{headingWithRange(panel, *view, rows), Emphasis::Heading} << table;
    const QStringList recent = view->recent.mid(std::max(0, view->recent.size() - EVENTS_SHOWN));
    for (const QString& event : recent)
        lines << PictureLine{event, Emphasis::Plain};

    lines.resize(std::max(1, size.rows - 1));
    // Of an input the end is what the person looks at.
    const QString prompt = promptLine(view->keys);
    lines << PictureLine{view->keys.prompt == Prompt::None ? prompt : prompt.right(size.columns),
                         Emphasis::Heading};
    for (PictureLine& line : lines)
        line.text.truncate(size.columns);
    return lines;
}

#include "screen.h"

#include <algorithm>

#include <cstdio>
#include <sys/ioctl.h>
#include <unistd.h>

namespace
{

constexpr Micros REDRAW_PERIOD = MICROS_PER_SECOND / 5;
constexpr Micros LINE_PERIOD = MICROS_PER_SECOND;
constexpr int EVENTS_SHOWN = 6;
constexpr int LINES_ABOVE_TAGS = 3, LINES_BELOW_TAGS = 1; // status, fail, heading; separator
constexpr ScreenSize UNKNOWN_SIZE = {24, 80};

QString seconds(Micros time, int decimals)
{
    return QString::number(static_cast<double>(time) / MICROS_PER_SECOND, 'f', decimals);
}

void print(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout);
}

ScreenSize terminalSize()
{
    winsize size = {};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_row == 0 || size.ws_col == 0)
        return UNKNOWN_SIZE;
    return {size.ws_row, size.ws_col};
}

QString linkText(const Panel& panel, Micros now)
{
    if (!panel.link.device)
        return QStringLiteral("DOWN (%1), next try in %2 s")
            .arg(panel.link.error, seconds(std::max(Micros{0}, panel.link.retryAt - now), 1));
    QStringList silent;
    for (auto it = panel.silentSince.begin(); it != panel.silentSince.end(); ++it)
        silent << QStringLiteral("NO ANSWER from station %1 for %2 s")
                      .arg(it.key())
                      .arg(seconds(now - it.value(), 1));
    return silent.isEmpty() ? QStringLiteral("up") : silent.join(QLatin1String(", "));
}

QString tagRow(const QString& name, const QString& address, const QString& value,
               const QString& age, const QString& state)
{
    return QStringLiteral("%1 %2 %3 %4  %5")
        .arg(name, -18)
        .arg(address, -22)
        .arg(value, 14)
        .arg(age, 8)
        .arg(state);
}

Quality qualityAt(const Panel& panel, int index, Micros now)
{
    return qualityOf(panel.states[index], stationSilent(panel, panel.tags[index].station), now,
                     panel.timeout);
}

QString shownValue(const TagState& state)
{
    return state.value.isEmpty() ? QStringLiteral("-") : state.value;
}

void takeEvents(Screen* screen, Panel* panel)
{
    for (const Event& event : panel->events) {
        const QString line =
            QStringLiteral("%1 s  %2").arg(seconds(event.at, 2), 8).arg(event.text);
        screen->recent << line;
        if (!screen->terminal)
            print(line + QLatin1Char('\n'));
    }
    panel->events.clear();
    while (screen->recent.size() > EVENTS_SHOWN)
        screen->recent.removeFirst();
}

void redraw(Screen* screen, const QStringList& lines)
{
    QString text;
    if (screen->linesDrawn > 0)
        text += QStringLiteral("\x1b[%1A").arg(screen->linesDrawn);
    for (const QString& line : lines)
        text += line + QStringLiteral("\x1b[K\n");
    print(text + QStringLiteral("\x1b[J"));
    screen->linesDrawn = lines.size();
}

} // namespace

Screen openScreen()
{
    Screen screen;
    screen.terminal = isatty(STDOUT_FILENO) != 0;
    return screen;
}

QString statusLine(const Panel& panel, double scans, Micros now)
{
    return QStringLiteral("link %1 %2 | %3 scans/s | %4 good, %5 failed")
        .arg(panel.link.name, linkText(panel, now))
        .arg(scans, 0, 'f', 1)
        .arg(panel.statistics.good)
        .arg(panel.statistics.failed);
}

QString tagLine(const Panel& panel, int index, Micros now)
{
    const Tag& tag = panel.tags[index];
    const TagState& state = panel.states[index];
    const Micros received = receivedAt(state);
    const QString address = QStringLiteral("%1 %2 @%3")
                                .arg(QLatin1String(REGISTER_TYPES[tag.type].name), tag.addressText)
                                .arg(tag.station);
    const QString age =
        received == NEVER ? QStringLiteral("-") : seconds(now - received, 2) + QStringLiteral(" s");
    return tagRow(tag.name, address, shownValue(state), age,
                  QLatin1String(qualityText(qualityAt(panel, index, now))));
}

QString compactLine(const Panel& panel, Micros now)
{
    QStringList values;
    for (int i = 0; i < panel.tags.size(); ++i) {
        const Quality quality = qualityAt(panel, i, now);
        QString text = QStringLiteral("%1=%2").arg(panel.tags[i].name, shownValue(panel.states[i]));
        if (quality != Quality::Good)
            text += QStringLiteral("(%1)").arg(QLatin1String(qualityText(quality)));
        values << text;
    }
    return values.join(QLatin1Char(' '));
}

QStringList picture(const Panel& panel, const Screen& screen, const ScreenSize& size, Micros now)
{
    QStringList lines;
    lines << QStringLiteral("%1 s  %2")
                 .arg(seconds(now, 1), statusLine(panel, screen.rate.perSecond, now));
    lines << QStringLiteral("last fail callback: ") +
                 (panel.lastFail.isEmpty() ? QStringLiteral("none") : panel.lastFail);
    lines << tagRow(QStringLiteral("TAG"), QStringLiteral("ADDRESS"), QStringLiteral("VALUE"),
                    QStringLiteral("AGE"), QStringLiteral("STATE"));
    // The line below the picture holds the cursor.
    const int room = size.rows - 1 - LINES_ABOVE_TAGS - LINES_BELOW_TAGS - EVENTS_SHOWN;
    const int shown = std::clamp(room, 1, panel.tags.size());
    for (int i = 0; i < shown; ++i)
        lines << tagLine(panel, i, now);
    lines << (shown == panel.tags.size()
                  ? QString()
                  : QStringLiteral("%1 more tags below").arg(panel.tags.size() - shown));
    lines << screen.recent;
    for (QString& line : lines)
        line.truncate(size.columns);
    return lines.mid(0, std::max(1, size.rows - 1));
}

void showPanel(Screen* screen, Panel* panel)
{
    takeEvents(screen, panel);
    const Micros now = panel->clock();
    updateRate(&screen->rate, panel->statistics.cyclicReads, panel->blocks, now);
    const Micros period = screen->terminal ? REDRAW_PERIOD : LINE_PERIOD;
    if (screen->shownAt != NEVER && now - screen->shownAt < period)
        return;
    screen->shownAt = now;
    if (screen->terminal)
        redraw(screen, picture(*panel, *screen, terminalSize(), now));
    else
        print(QStringLiteral("%1 s  %2 | %3\n")
                  .arg(seconds(now, 2), 8)
                  .arg(statusLine(*panel, screen->rate.perSecond, now), compactLine(*panel, now)));
    std::fflush(stdout);
}

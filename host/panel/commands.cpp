#include "commands.h"

#include "station_switch.h"

namespace
{

QString writeByHand(const QString& text, Panel* panel)
{
    const QString error = addWrite(text, false, panel->tags, &panel->writes);
    return error.isEmpty() ? QString() : QStringLiteral("not written: ") + error;
}

QString switchStation(const QString& text, Panel* panel)
{
    bool good = false;
    const int station = text.toInt(&good);
    const QString error = good ? toggleStation(panel, station)
                               : QStringLiteral("expected a station's number, not '%1'").arg(text);
    return error.isEmpty() ? QString() : QStringLiteral("not switched: ") + error;
}

} // namespace

bool applyCommand(const Command& command, Keys* keys, Panel* panel)
{
    switch (command.kind) {
    case CommandKind::Quit:
        return true;
    case CommandKind::Pause:
        panel->paused = !panel->paused;
        note(panel,
             panel->paused ? QStringLiteral("paused: nothing is sent") : QStringLiteral("goes on"));
        break;
    case CommandKind::Write:
        keys->message = writeByHand(command.text, panel);
        break;
    case CommandKind::Station:
        keys->message = switchStation(command.text, panel);
        break;
    default:
        break;
    }
    return false;
}

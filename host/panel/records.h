// What changed, one JSON object on a line, for other programs:
//
//     {"address":"MW101","quality":"good","station":1,"tag":"setpoint","time":"2026-01-31T12:00:00.000Z","value":300}
//     {"state":"done","tag":"setpoint","time":"...","write":"300"}
//     {"event":"station 2 does not answer","time":"..."}
#pragma once

#include "panel.h"

struct Recorder {
    qint64 startedAtMs = 0;    ///< since the epoch, the panel's time 0
    QVector<QString> tagsTold; ///< value and quality of each tag
    QVector<WriteState> writesTold;
};

/// The records of what changed since the last call, each without its line end. Takes the events.
QList<QByteArray> changeRecords(Recorder* recorder, Panel* panel);

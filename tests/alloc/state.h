/// What a call can change, as text: two states are the same when their texts are.
#ifndef KP410_TESTS_ALLOC_STATE_H
#define KP410_TESTS_ALLOC_STATE_H

#include "support/driver.h"

/// What the calls are handed, made before memory fails.
struct Arguments {
    RW_VAR var;
    QList<RW_VAR> pieces;
    QList<VAR_DESC> descriptions;
    QString label, address;
    QByteArray value, reply;
};
inline Arguments given;

struct Note {
    int key, state;
};
inline constexpr int FAIL_CALLBACK = 9;
inline Note notes[64];
inline int noted = 0;

/// Callbacks of a runtime that is careless with memory, after they have taken note without any.
inline void note(int key, int state)
{
    notes[noted++] = {key, state};
    events << QString::number(key);
}

inline void noteFinish(int, int key, int, int state)
{
    note(key, state);
}

inline void noteFail(QList<RW_VAR>*, int key, int)
{
    note(key, FAIL_CALLBACK);
}

inline QByteArray textOf(const RW_VAR& var)
{
    QByteArray line;
    for (const int field : {var.hostKey, var.hostSubKey, var.rwFlag, var.regType, var.address,
                            var.station, var.length, var.rmwStep})
        line += QByteArray::number(field) + ' ';
    return line + var.data.toHex() + ' ' + var.addressText.toLatin1() + '\n';
}

inline QByteArray textOf(const char* name, const QList<RW_VAR>& list)
{
    QByteArray lines = QByteArray(name) + '\n';
    for (const RW_VAR& var : list)
        lines += textOf(var);
    return lines;
}

/// The store as host reads show it: what never arrived is as good as 0.
inline QByteArray storeText()
{
    QByteArray lines = "store\n";
    const QMap<int, QMap<int, QByteArray>> store = DataStorage;
    for (const int station : store.keys()) {
        const QMap<int, QByteArray> areas = store.value(station);
        for (const int area : areas.keys()) {
            QByteArray image = areas.value(area);
            while (image.endsWith('\0'))
                image.chop(1);
            if (!image.isEmpty())
                lines += QByteArray::number(station) + '/' + QByteArray::number(area) + ' ' +
                         image.toHex() + '\n';
        }
    }
    return lines;
}

inline QByteArray notesText()
{
    QByteArray lines = "callbacks\n";
    for (int i = 0; i < noted; ++i)
        lines += QByteArray::number(notes[i].key) + ' ' + QByteArray::number(notes[i].state) + '\n';
    return lines;
}

inline QByteArray stateText()
{
    const QList<Protocol>& frames = PLC_driver.frameList;
    QByteArray lines = textOf("cyclic", PLC_driver.readList) +
                       textOf("writes", PLC_driver.writeList) +
                       textOf("once", PLC_driver.onceReadList) + "frames\n";
    // The second frame of a pair is unfinished until the first has been answered.
    if (!frames.isEmpty())
        lines += QByteArray::number(frames.size()) + ' ' + frames.at(0).frame.toHex() + '\n';
    for (const int count :
         {settings.frameCount, settings.framesDone, settings.retryCount, settings.scanDone,
          PLC_driver.scanCount, PLC_driver.lastFailed ? 1 : 0, PLC_driver.stationMap.size()})
        lines += QByteArray::number(count) + ' ';
    return lines + notesText() + storeText() + textOf("given", given.pieces) + textOf(given.var) +
           given.value.toHex();
}

#endif

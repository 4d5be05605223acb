// Writes that a person asked for, from their due time to their reading back.
#pragma once

#include "tag.h"
#include "timing.h"

#include <QVector>

enum class WriteState { Waiting, Queued, Done, Failed, Refused };
enum class ReadBack { Open, Same, Different };

struct Write {
    int tag = 0; ///< index
    QByteArray value;
    QString shown; ///< the value as the tag's format shows it
    Micros due = 0;
    int hostKey = 0; ///< names the write in its callback, together with the tag's index
    WriteState state = WriteState::Waiting;
    Micros queuedAt = 0, finishedAt = 0;
    ReadBack readBack = ReadBack::Open;
    QString readValue;
};

/// Appends the write that "NAME=VALUE", or "SECONDS:NAME=VALUE" when `timed`, asks for.
/// @return empty, or what is wrong with it; nothing is appended then
QString addWrite(const QString& text, bool timed, const QVector<Tag>& tags, QVector<Write>* writes);

/// The write that a finish callback names, -1 when none is queued under these keys.
int findWrite(const QVector<Write>& writes, int hostKey, int hostSubKey);

void finishWrite(QVector<Write>* writes, int index, bool done, Micros now);

/// Compares a value with the last finished write to the tag. @param receivedAt when the value's
/// oldest byte was received. @return that write, -1 when there is nothing to compare
int compareReadBack(QVector<Write>* writes, int tag, const QString& value, Micros receivedAt);

/// Every write was acknowledged and, but for those that a newer one overtook, read back.
bool writesGood(const QVector<Write>& writes);

QString writeText(const Write& write, const QVector<Tag>& tags);
const char* writeStateText(WriteState state);

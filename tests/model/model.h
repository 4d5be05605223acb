/// What the driver has to do, told plainly and slowly: every list walked from its start, every
/// stored value put bit by bit. It shares nothing with the driver but the records of the header.
#ifndef KP410_TESTS_MODEL_H
#define KP410_TESTS_MODEL_H

#include "support/target.h"

#include <QSet>
#include <QStringList>

/// A frame that waits: what it serves, the reply it wants, and the word that a reply has put in it.
struct ModelFrame {
    RW_VAR var;
    int replyLength;
    int dataOffset;
    int word;
};

struct Model {
    ComInfo settings;     ///< as the runtime's record should be
    bool attached = true; ///< the driver has been given the record
    bool reports = true;  ///< the driver has been given the callbacks
    QList<RW_VAR> reads, writes, onceReads;
    QList<ModelFrame> frames;
    QSet<int> off;
    Store images;
    QStringList events;
    RW_VAR served;
    int source = SOURCE_NONE, writeBurst = 0, onceBurst = 0, scanCount = 0;
    bool failed = false;

    int addWrite(const RW_VAR& var, int mode);
    int addOnce(RW_VAR& var, int mode);
    int regroup(const QList<VAR_DESC>& vars);
    QList<RW_VAR> cut(int length, int limit, RW_VAR& var) const;
    void station(int number, int enable);
    bool turn(); ///< @return true when there is a frame to send
    int reply(const QByteArray* reply, int length);
    int get(RW_VAR& var); ///< of its type, text, station and length; into its data
    int set(RW_VAR& var); ///< its data as well, which become what was taken from them

    /// What differs between the driver's state and the model's; empty when nothing does.
    QString difference(const Communication_Protocol& driver, const Store& store,
                       const ComInfo& actual);

private:
    bool startQueued(QList<RW_VAR>& queue, int from, int& burst);
    bool startHead(QList<RW_VAR>& queue, int from);
    void encode(const RW_VAR& var);
    void finish(bool good, bool remote);
    void take(const ModelFrame& head, const QByteArray& reply, bool remote);
    RW_VAR record(int type, const QString& text, int station, int count) const;
    QByteArray& image(int station, int area, qint64 size);
    void put(const Target& target, const QByteArray& bits);
    void store(const RW_VAR& record);
    void emitBlocks(RW_VAR& block, bool rest);
    int queue(RW_VAR& record, const QByteArray& value);
};

int modelAddress(int type, const QString& text);
void toNative(RW_VAR& var);

#endif

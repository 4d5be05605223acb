// What the panel knows about a tag. The store cannot tell a received zero from one that never came,
// so each byte of a tag is dated by the block that brought it.
#pragma once

#include "coverage.h"
#include "timing.h"

#include <QVector>

struct TagState {
    QVector<Micros> receivedAt; ///< of each byte that the tag occupies; NEVER at first
    QByteArray raw; ///< the value as a host read delivers it; empty until received or written
    QString value;  ///< the same as text
    Micros doubtedAt = NEVER; ///< when its block was given up, or its station found silent before
    Micros givenUpAt = NEVER; ///< when its block was last given up
    Micros writtenAt = NEVER; ///< when a write to it was last acknowledged
    qint64 reads = 0;         ///< how often it was received whole
};

enum class Quality { Waiting, Good, Written, Stale, Failed, NoAnswer, Off };

/// What holds for a tag beside its own state.
enum class Presence { Present, Silent, Off };

TagState initialState(const Tag& tag);

/// Dates the bytes of the tag that a block brought. @return true when the tag is complete now
bool markReceived(const Tag& tag, const ImageRange& block, Micros now, TagState* state);

/// Notes that a block was given up. @return true when the tag needs it
bool markFailed(const Tag& tag, const ImageRange& block, Micros now, TagState* state);

/// Takes a value, as a host read delivers it.
void takeValue(const Tag& tag, const QByteArray& raw, TagState* state);

/// When the oldest byte of the tag was received, NEVER when one is missing.
Micros receivedAt(const TagState& state);

/// Whether a byte of the tag is older than what speaks against it.
bool isDoubted(const TagState& state);

struct QualityLimits {
    Micros timeout = 0;    ///< of a reply
    Micros oldestGood = 0; ///< a value older than this needs a look
};

/// @param presence of the tag's station
Quality qualityOf(const TagState& state, Presence presence, Micros now,
                  const QualityLimits& limits);

const char* qualityText(Quality quality);

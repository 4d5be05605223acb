// What the panel knows about a tag. The store cannot tell a received zero from one that never came,
// so each byte of a tag is dated by the block that brought it.
#pragma once

#include "coverage.h"
#include "timing.h"

#include <QVector>

constexpr Micros NEVER = -1;

struct TagState {
    QVector<Micros> receivedAt; ///< of each byte that the tag occupies; NEVER at first
    QString value;              ///< empty until received or written
    bool failed = false;  ///< its block was given up, or its station silent, since it was received
    bool written = false; ///< the value was written and has not been read since
};

enum class Quality { Waiting, Good, Written, Stale, NoAnswer };

TagState initialState(const Tag& tag);

/// Dates the bytes of the tag that a block brought. @return true when the tag is complete now
bool markReceived(const Tag& tag, const ImageRange& block, Micros now, TagState* state);

/// Notes that a block was given up. @return true when the tag needs it
bool markFailed(const Tag& tag, const ImageRange& block, TagState* state);

/// When the oldest byte of the tag was received, NEVER when one is missing.
Micros receivedAt(const TagState& state);

/// @param silent nothing comes from the tag's station
Quality qualityOf(const TagState& state, bool silent, Micros now, Micros timeout);

const char* qualityText(Quality quality);

// Values as JSON.
#pragma once

#include "tag.h"

#include <QByteArray>
#include <QJsonValue>

/// The value of a tag: true or false in format bool, a string such as "0x00ff" in format hex, a
/// number in the others; null for a float32 that is infinite or not a number. An array of these
/// when the tag holds several values. `raw` is what a host read delivered.
QJsonValue jsonValue(const Tag& tag, const QByteArray& raw);

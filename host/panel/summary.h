// What a run came to.
#pragma once

#include "panel.h"

QStringList summary(const Panel& panel, Micros ran);

/// Value, age and quality of every tag.
QStringList tagTable(const Panel& panel, Micros now);

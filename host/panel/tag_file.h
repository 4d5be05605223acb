// The tag file: lines "name,type,address,length,station,format"; '#' starts a comment.
#pragma once

#include "tag.h"

#include <QStringList>
#include <QVector>

struct TagFile {
    QVector<Tag> tags;
    QStringList errors; ///< "FILE:LINE: what is wrong and what was expected", one for each bad line
};

TagFile parseTags(const QString& fileName, const QString& text);
TagFile readTagFile(const QString& fileName);

/// Index of the tag called `name`, -1 when there is none.
int tagByName(const QVector<Tag>& tags, const QString& name);

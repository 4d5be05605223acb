// The tag file: lines "name,type,address,length,station,format", as a spreadsheet writes them or a
// person does; '#' starts a comment.
//
// - The type is a name of REGISTER_TYPES in any case and the address a number of its elements, or a
//   short form such as MW100 stands in one of the two columns (see short_form.h).
// - Columns may be empty, or left out at the end: one value (2 words where it takes two), station
// 1,
//   the type's own format.
// - The heading may stand in the first line that is not blank. A byte-order mark, CR LF and double
//   quotes are accepted.
#pragma once

#include "tag.h"

#include <QStringList>
#include <QVector>

struct TagFile {
    QVector<Tag> tags; ///< of the lines without an error
    QStringList
        errors; ///< "FILE:LINE:COLUMN: expected WHAT, not 'FOUND'", one for each wrong field
};

TagFile parseTags(const QString& fileName, const QString& text);

/// Reads UTF-8 text. A file that cannot be read, is too long or holds no tag is an error, too.
TagFile readTagFile(const QString& fileName);

/// Index of the tag called `name`, -1 when there is none.
int tagByName(const QVector<Tag>& tags, const QString& name);

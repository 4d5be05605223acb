// The fields of one line of the tag file.
#pragma once

#include "csv_line.h"
#include "tag.h"

#include <QVector>

struct FieldProblem {
    int column = 1;   ///< in the line, 1 is the first
    QString expected; ///< what should have stood there
    QString found;    ///< what stands there
};

struct TagLine {
    Tag tag;                        ///< whole only when there are no problems; a name is a good one
    QVector<FieldProblem> problems; ///< one for each wrong field, in the order of the line
};

/// Reads a line that is neither blank nor the heading.
TagLine parseTagLine(const CsvLine& line);

/// Whether the line is the heading "name,type,address,length,station,format", in any case; columns
/// may be missing at its end.
bool isHeading(const CsvLine& line);

// A line of comma-separated values as spreadsheets write it, with a comment behind '#'.
#pragma once

#include <QString>
#include <QVector>

struct CsvField {
    QString text;    ///< without quotes, and without blanks around it
    int column = 1;  ///< where it starts in the line, its quote included; the first character is 1
    QString problem; ///< what was expected of its quotes; empty when they are right
};

struct CsvLine {
    QVector<CsvField> fields; ///< at least one
    int endColumn = 1;        ///< the first behind the last field
};

/// Splits a line. A field may stand in double quotes, within which commas and '#' are text and a
/// doubled quote is one; a quote in the midst of a field is text.
CsvLine splitCsvLine(const QString& line);

/// Whether the line holds nothing but blanks, commas and a comment.
bool isBlank(const CsvLine& line);

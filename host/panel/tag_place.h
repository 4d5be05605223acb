// The type and the address column of the tag file, which name a place in the controller together.
#pragma once

#include "csv_line.h"
#include "short_form.h"
#include "tag_fields.h"

/// Reads both columns: a type and an address, or a short form in one of them. Both may be filled as
/// long as they say the same. What stays unknown in `place` has been complained about.
QVector<FieldProblem> parsePlace(const CsvField& type, const CsvField& address, Place* place);

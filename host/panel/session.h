// A whole run: the panel set up from the options, the loop until the goal is reached, the report.
#pragma once

#include "options.h"

/// Takes the settings and the writes of the options. @return what is wrong with them
QStringList preparePanel(const Options& options, Panel* panel);

/// Runs until the goal is reached, the person at the keys wants to end it, or `interrupted` is set.
/// The driver must be loaded. @return the exit status of the program
ExitStatus runSession(const Options& options, Panel* panel, const volatile int* interrupted);

/// Writes each line to standard error, after the program's name.
void complain(const QStringList& errors);

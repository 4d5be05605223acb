// The values of the options, each read from its text.
#ifndef PLC_OPTION_VALUES_H
#define PLC_OPTION_VALUES_H

#include "options.h"

namespace plc
{
// Each returns what the option takes; empty when the text is good.
QString parseStations(const QString& text, QList<int>& stations);
QString parseTcp(const QString& text, Options& options);
QString parseDeafMs(const QString& text, int& deafMs);
QString parseBaud(const QString& text, int& baud);
QString parseParity(const QString& text, char& parity);
QString parseStopBits(const QString& text, int& stopBits);
QString parseSeed(const QString& text, quint32& seed);
/// @param stations a fault may be limited to one of them alone
QString parseFaults(const QStringList& texts, const QList<int>& stations, QList<Fault>& faults);

/// What is wrong, and the text in quotation marks.
QString quoted(const QString& what, const QString& text);
} // namespace plc

#endif

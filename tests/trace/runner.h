/// Runs the lines of a trace against the loaded library, as a runtime would. The commands are
/// described in README.md beside this file.
#ifndef KP410_TESTS_RUNNER_H
#define KP410_TESTS_RUNNER_H

#include "support/library.h"
#include "trace/script.h"

class Runner
{
public:
    explicit Runner(const Library& library);

    /// The driver as set up by a runtime and never used.
    void reset();

    /// @return what went otherwise than the line expects; empty when nothing did
    QString run(const TraceLine& line);

    /// @return what a case must not leave behind: a callback nobody expected, a lock
    QString ending();

private:
    typedef QString (Runner::*Command)(const TraceLine&);

    QString set(const TraceLine& line);
    QString add(const TraceLine& line);
    QString regroup(const TraceLine& line);
    QString cut(const TraceLine& line);
    QString get(const TraceLine& line);
    QString put(const TraceLine& line);
    QString fill(const TraceLine& line);
    QString image(const TraceLine& line);
    QString request(const TraceLine& line);
    QString reply(const TraceLine& line);
    QString frame(const TraceLine& line);
    QString list(const TraceLine& line);
    QString event(const TraceLine& line);
    QString station(const TraceLine& line);
    QString turns(const TraceLine& line);
    QString address(const TraceLine& line);

    QList<RW_VAR>* listNamed(const QString& name);
    int* field(const QString& name);

    const Library& library;
    Communication_Protocol& driver;
    ComInfo settings;
    QMap<QString, Command> commands;
};

#endif

/// Runs the lines of a trace against the loaded library, as a runtime would. The commands are
/// described in README.md beside this file.
#ifndef KP410_TESTS_RUNNER_H
#define KP410_TESTS_RUNNER_H

#include "support/library.h"
#include "trace/script.h"

#include <functional>

class Runner
{
public:
    explicit Runner(const Library& library);

    /// The driver as set up by a runtime and never used.
    void reset();

    /// @return what went otherwise than the line expects; empty when nothing did
    QString run(const TraceLine& line);

    /// Does what the line says. @return all that has come of it, in the words of traces
    QString outcome(const TraceLine& line);

    /// @return what a case must not leave behind: a callback nobody expected, a lock
    QString ending();

    /// Makes, or does not make, the one call of the library that a line is for.
    // &: some ARM functions have odd addresses, and UBSan takes a reference to one for misaligned.
    std::function<void(const std::function<void()>& call)> around = &plainly;
    static void plainly(const std::function<void()>& call) { call(); }

private:
    struct Command {
        const char* name;
        QString (Runner::*run)(const TraceLine&);
        bool hasBytes = false; ///< it says bytes, which a trace may set apart
    };

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
    QString sums(const TraceLine& line);
    QString digit(const TraceLine& line);
    QString log(const TraceLine& line);
    QString waits(const TraceLine& line);

    static const Command* commandOf(const TraceLine& line);

    /// What `function` returns, or `neutral` where the call is not made.
    template <typename Result, typename... Parameters, typename... Arguments>
    Result call(Result neutral, Result (*function)(Parameters...), Arguments... arguments)
    {
        around([&] { neutral = function(arguments...); });
        return neutral;
    }

    const Library& library;
    Communication_Protocol& driver;
    ComInfo settings;
};

#endif

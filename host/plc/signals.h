// Turns Unix signals into calls from the event loop.
#ifndef PLC_SIGNALS_H
#define PLC_SIGNALS_H

#include <QSocketNotifier>

#include <functional>
#include <initializer_list>
#include <memory>

namespace plc
{
class Signals
{
public:
    /// From now on each of `numbers` calls `handle` with its number and does nothing else.
    Signals(std::initializer_list<int> numbers, std::function<void(int)> handle);
    ~Signals();
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

private:
    int m_descriptor;
    std::unique_ptr<QSocketNotifier> m_notifier;
};
} // namespace plc

#endif

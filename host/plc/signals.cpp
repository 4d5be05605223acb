#include "signals.h"

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>
#include <utility>

namespace plc
{
Signals::Signals(std::initializer_list<int> numbers, std::function<void(int)> handle)
{
    sigset_t set;
    sigemptyset(&set);
    for (const int number : numbers)
        sigaddset(&set, number);
    sigprocmask(SIG_BLOCK, &set, nullptr);
    m_descriptor = signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC);
    m_notifier = std::make_unique<QSocketNotifier>(m_descriptor, QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
                     [descriptor = m_descriptor, call = std::move(handle)] {
                         signalfd_siginfo info = {};
                         while (::read(descriptor, &info, sizeof info) == sizeof info)
                             call(static_cast<int>(info.ssi_signo));
                     });
}

Signals::~Signals()
{
    m_notifier.reset();
    ::close(m_descriptor);
}
} // namespace plc

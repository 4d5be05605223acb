/// Threads that call the driver, each its own entry points, beside the communication task.
#ifndef KP410_TESTS_CREW_H
#define KP410_TESTS_CREW_H

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>
#include <vector>

/// What a thread does for the n-th time.
typedef void (*Job)(int n);

/// How often a job that is done `usual` times in a test is done now: as often as the environment
/// wants, for long runs by hand.
inline int times(int usual)
{
    const char* factor = std::getenv("KP410_THREADS_FACTOR");
    return usual * (factor ? std::atoi(factor) : 1);
}

class Crew
{
public:
    ~Crew() { join(); }
    void start(Job job, int count)
    {
        ++atWork;
        threads.emplace_back([this, job, count] {
            for (int n = 0; n < count; ++n)
                job(n);
            --atWork;
        });
    }
    /// As long as `others` are at work. A mutex is not fair: without a pause, a thread that does
    /// little else than hold it keeps out all others.
    void startBeside(const Crew& others, Job job, std::chrono::microseconds pause)
    {
        threads.emplace_back([&others, job, pause] {
            for (int n = 0; others.isAtWork(); ++n) {
                job(n);
                if (pause.count() != 0)
                    std::this_thread::sleep_for(pause);
            }
        });
    }
    bool isAtWork() const { return atWork != 0; }
    void join()
    {
        for (std::thread& thread : threads)
            thread.join();
        threads.clear();
    }

private:
    std::vector<std::thread> threads;
    std::atomic<int> atWork{0};
};

#endif

/// What a failed allocation leaves behind: a neutral result, and lists as they were.
#ifndef KP410_CHECK_GUARDED_H
#define KP410_CHECK_GUARDED_H

#include <QList>

#include <new>

/// Runs `function`. Whatever allocates on behalf of the runtime does so in here, since no exception
/// may reach it. @return its result, or `neutral` when memory fails in it
template <typename Result, typename Function>
Result guarded(Result neutral, Function function)
{
    try {
        return function();
    } catch (const std::bad_alloc&) {
        return neutral;
    }
}

/// The same for a function without result, which ends early when memory fails in it.
template <typename Function>
void guarded(Function function)
{
    guarded(false, [&function] {
        function();
        return true;
    });
}

/// Takes back what is appended to a list from here on, unless `keep` is called: several entries, or
/// none of them.
template <typename Entry>
class Appending
{
public:
    explicit Appending(QList<Entry>& to) : list(to), before(to.size()) {}
    ~Appending()
    {
        while (!kept && list.size() > before)
            list.removeLast();
    }
    Appending(const Appending&) = delete;
    Appending& operator=(const Appending&) = delete;

    void keep() { kept = true; }

private:
    QList<Entry>& list;
    const int before;
    bool kept = false;
};

/// Empties a list to be filled anew, and brings the old entries back unless `keep` is called.
template <typename Entry>
class Refilling
{
public:
    explicit Refilling(QList<Entry>& to) : list(to) { list.swap(before); }
    ~Refilling()
    {
        if (!kept)
            list.swap(before);
    }
    Refilling(const Refilling&) = delete;
    Refilling& operator=(const Refilling&) = delete;

    void keep() { kept = true; }

private:
    QList<Entry>& list;
    QList<Entry> before;
    bool kept = false;
};

#endif

// What ThreadSanitizer cannot know of Qt, whose libraries are not instrumented. Linked into the
// tests of a ThreadSanitizer build only, and no part of what the driver may use.
#include <QByteArray>
#include <QString>

static_assert(QT_VERSION >= QT_VERSION_CHECK(5, 0, 0) && QT_VERSION < QT_VERSION_CHECK(6, 0, 0),
              "the assignments below are those of Qt 5");

// Shared data is freed by the thread that lets go of it last, and the counting orders that behind
// what the other threads did with it. Qt counts in inline functions, which are instrumented with
// the driver, but for these two: here they are again, where the tool sees them.
QString& QString::operator=(const QString& other) noexcept
{
    other.d->ref.ref();
    if (!d->ref.deref())
        Data::deallocate(d);
    d = other.d;
    return *this;
}

QByteArray& QByteArray::operator=(const QByteArray& other) noexcept
{
    other.d->ref.ref();
    if (!d->ref.deref())
        Data::deallocate(d);
    d = other.d;
    return *this;
}

// Qt Test's own thread, which watches over the time that a test takes, waits on a condition and
// ends with the test. Neither the driver nor the tests have a condition: no race of theirs is
// hidden.
extern "C" const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions()
{
    return "race:QWaitCondition::~QWaitCondition\n"
           "race:pthread_cond_wait\n";
}

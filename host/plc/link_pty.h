// A pseudo-terminal whose other end a panel opens as its serial port.
#ifndef PLC_LINK_PTY_H
#define PLC_LINK_PTY_H

#include "session.h"

#include <QSocketNotifier>
#include <QString>

#include <memory>

namespace plc
{
class PtyLink
{
public:
    explicit PtyLink(Controller& controller);
    ~PtyLink();
    PtyLink(const PtyLink&) = delete;
    PtyLink& operator=(const PtyLink&) = delete;

    /// Creates the terminal. @param linkPath also makes this symbolic link to it unless empty; an
    /// old symbolic link there is replaced. @return what went wrong; empty when nothing did
    QString open(const QString& linkPath);
    QString name() const { return m_name; }

private:
    void read();
    void write(const QByteArray& bytes) const;

    Session m_session;
    int m_master = -1;
    int m_slave = -1;
    QString m_name;
    QString m_linkPath;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QTimer m_unlock;
};
} // namespace plc

#endif

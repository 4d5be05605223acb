/// The line between the panel and the simulated controller: no device and no waiting, time passes
/// when somebody waits for it.
#pragma once

#include "plc/controller.h"
#include "timing.h"

#include <QIODevice>

#include <cstring>

inline constexpr int BAUD = 115200;

inline Micros now = 0; ///< the panel's and the controller's

class Line : public QIODevice
{
public:
    explicit Line(plc::Controller& served) : controller(served)
    {
        open(QIODevice::ReadWrite | QIODevice::Unbuffered);
    }

    bool isSequential() const override { return true; }

    bool waitForReadyRead(int ms) override
    {
        const Micros until = now + ms * MICROS_PER_MILLI;
        serve(plc::takeSilence(framer, controller.framing.frameLength, until / MICROS_PER_MILLI));
        now = std::max(now, std::min(until, nextAt()));
        return nextAt() <= now;
    }

protected:
    qint64 readData(char* data, qint64 room) override
    {
        int size = 0;
        while (nextAt() <= now && size + coming.first().size() <= room) {
            const QByteArray bytes = coming.take(nextAt());
            std::memcpy(data + size, bytes.constData(), static_cast<size_t>(bytes.size()));
            size += bytes.size();
        }
        return size;
    }

    qint64 writeData(const char* data, qint64 size) override
    {
        const QByteArray bytes(data, static_cast<int>(size));
        const plc::FrameLength length = controller.framing.frameLength;
        serve(plc::takeBytes(framer, length, bytes, now / MICROS_PER_MILLI));
        return size;
    }

private:
    Micros nextAt() const { return coming.isEmpty() ? plc::FOREVER_MS : coming.firstKey(); }

    void serve(const QList<QByteArray>& frames)
    {
        constexpr int babbleBytes = 16, babbleIntervalMs = 10;
        for (const QByteArray& frame : frames) {
            const Micros at = now + transmissionTime(frame.size(), BAUD);
            const plc::Sending sending = plc::serve(controller, link, frame, at / MICROS_PER_MILLI);
            coming[at] += sending.echo;
            for (const plc::TimedBytes& timed : plc::schedule(sending))
                coming[at + timed.atMs * MICROS_PER_MILLI] += timed.bytes;
            for (int ms = 0; sending.babble && ms < sending.babbleMs; ms += babbleIntervalMs)
                coming[at + ms * MICROS_PER_MILLI] += plc::randomBytes(babbleBytes, noise);
        }
    }

    plc::Controller& controller;
    plc::Line link;
    plc::Framer framer;
    plc::Generator noise;
    QMap<Micros, QByteArray> coming;
};

// The lines of --trace: what each frame means, and that any bytes whatever have one.
#include "support/cases.h"
#include "support/frames.h"
#include "trace.h"

namespace
{

/// "remote: " tells the framing of a request.
WireFrame frameOf(FrameKind kind, QByteArray frame, QByteArray request)
{
    const bool remote = (frame + request).contains("remote:");
    return {0, kind, bytes(frame.replace("remote:", "")), bytes(request.replace("remote:", "")),
            remote};
}

QString meaning(const WireFrame& frame)
{
    return traceLine(frame).section(text(" | "), 1);
}

/// The line shows every byte and says something about them.
bool hasLine(const WireFrame& frame)
{
    constexpr int DIRECTION_COLUMN = 13;
    const QString line = traceLine(frame);
    const int bar = line.indexOf(QLatin1Char('|'));
    const QString hex = line.mid(DIRECTION_COLUMN + 1, bar - DIRECTION_COLUMN - 1).trimmed();
    return hex == text(frame.bytes.toHex(' ').toUpper()) && !meaning(frame).isEmpty() &&
           !line.contains(QLatin1Char('\n'));
}

/// In every role, with `other` as the request, in both framings.
bool hasLines(const QByteArray& bytes, const QByteArray& other)
{
    for (const bool remote : {false, true})
        for (const FrameKind kind : {FrameKind::Sent, FrameKind::Reply, FrameKind::Stray})
            if (!hasLine({0, kind, bytes, other, remote}) ||
                !hasLine({0, FrameKind::NoReply, {}, other, remote}))
                return false;
    return true;
}

QString line(const Given& in)
{
    const QHash<QByteArray, FrameKind> kinds{{"sent", FrameKind::Sent},
                                             {"reply", FrameKind::Reply},
                                             {"stray", FrameKind::Stray},
                                             {"silence", FrameKind::NoReply}};
    WireFrame frame = frameOf(kinds.value(in[1]), in[2], in[3]);
    frame.at = in[0].toLongLong();
    return traceLine(frame).replace(QLatin1Char(' '), QLatin1Char('_'));
}

QString request(const Given& in)
{
    return meaning(frameOf(FrameKind::Sent, in[0], {}));
}

QString reply(const Given& in)
{
    return meaning(frameOf(FrameKind::Reply, in[1], in[0]));
}

QString stray(const Given& in)
{
    return meaning(frameOf(FrameKind::Stray, in[0], {}));
}

QString cutAnywhere(const Given& in)
{
    const WireFrame whole = frameOf(FrameKind::Reply, in[1], in[0]);
    for (int length = 0; length <= whole.request.size(); ++length)
        if (!hasLines(whole.request.left(length), whole.bytes) ||
            !hasLines(whole.bytes, whole.request.left(length)))
            return text("request cut to %1").arg(length);
    QStringList meanings;
    for (int length = 0; length < whole.bytes.size(); ++length) {
        WireFrame cut = whole;
        cut.bytes.truncate(length);
        const QString missing = QStringLiteral("%1 byte%2 missing")
                                    .arg(whole.bytes.size() - length)
                                    .arg(text(length + 1 == whole.bytes.size() ? "" : "s"));
        if (!hasLines(cut.bytes, cut.request) ||
            !meaning(cut).contains(length < 5 ? text("too short") : missing))
            return text("cut to %1: ").arg(length) + meaning(cut);
    }
    return meaning(whole);
}

} // namespace

class PanelTrace : public CaseTest
{
    Q_OBJECT
public:
    PanelTrace()
        : CaseTest(CASES, {{"lines", 4, line},
                           {"requests", 1, request},
                           {"replies", 2, reply},
                           {"strays", 1, stray},
                           {"cutAnywhere", 2, cutAnywhere}})
    {
    }
private slots:
    void noise()
    {
        constexpr int ROUNDS = 5000, LONGEST = 40;
        const QByteArray codes = QByteArray::fromHex("010203060F103133358307");
        QRandomGenerator random(410);
        const auto frame = [&] {
            QByteArray bytes(random.bounded(LONGEST), '\0');
            for (char& byte : bytes)
                byte = static_cast<char>(random.bounded(256));
            if (bytes.size() > 1 && random.bounded(2) == 0)
                bytes[1] = codes[random.bounded(codes.size())];
            return random.bounded(2) == 0 ? plc::withCrc(bytes) : bytes;
        };
        for (int i = 0; i < ROUNDS; ++i) {
            const QByteArray bytes = frame(), other = frame();
            QVERIFY2(hasLines(bytes, other), bytes.toHex() + " to " + other.toHex());
        }
        QVERIFY(hasLines(QByteArray(100000, '\x10'), QByteArray(70000, '\xFF')));
    }
};

QTEST_APPLESS_MAIN(PanelTrace)
#include "tst_panel_trace.moc"

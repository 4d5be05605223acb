// The lines of --trace: what each frame means, and that any bytes whatever have one.
#include "cases.h"
#include "trace.h"

#include "../../host/plc/wire.h"

#include <QHash>
#include <QRandomGenerator>

class PanelTrace : public QObject
{
    Q_OBJECT
private slots:
    void lines_data() { addCases(); }
    void lines();
    void requests_data() { addCases(); }
    void requests();
    void replies_data() { addCases(); }
    void replies();
    void strays_data() { addCases(); }
    void strays();
    void cutAnywhere_data() { addCases(); }
    void cutAnywhere();
    void noise();
    void longFrames();
};

namespace
{

/// Hex bytes; a '+' at their end stands for their CRC. "remote: " tells the framing of a request.
QByteArray bytesOf(QByteArray hex)
{
    const bool addsCrc = hex.endsWith('+');
    const QByteArray bytes = QByteArray::fromHex(hex.replace("remote:", ""));
    return addsCrc ? plc::withCrc(bytes) : bytes;
}

WireFrame frameOf(FrameKind kind, const QByteArray& hex, const QByteArray& request)
{
    return {0, kind, bytesOf(hex), bytesOf(request), (hex + request).contains("remote:")};
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

} // namespace

void PanelTrace::lines()
{
    static const QHash<QByteArray, FrameKind> kinds{{"sent", FrameKind::Sent},
                                                    {"reply", FrameKind::Reply},
                                                    {"stray", FrameKind::Stray},
                                                    {"silence", FrameKind::NoReply}};
    const QList<QByteArray> in = given(4);
    QVERIFY(kinds.contains(in[1]));
    WireFrame frame = frameOf(kinds[in[1]], in[2], in[3]);
    frame.at = in[0].toLongLong();
    QTEST(traceLine(frame).replace(QLatin1Char(' '), QLatin1Char('_')), "expected");
}

void PanelTrace::requests()
{
    QTEST(meaning(frameOf(FrameKind::Sent, given(1)[0], {})), "expected");
}

void PanelTrace::replies()
{
    const QList<QByteArray> in = given(2);
    QTEST(meaning(frameOf(FrameKind::Reply, in[1], in[0])), "expected");
}

void PanelTrace::strays()
{
    QTEST(meaning(frameOf(FrameKind::Stray, given(1)[0], {})), "expected");
}

void PanelTrace::cutAnywhere()
{
    const QList<QByteArray> in = given(2);
    const WireFrame whole = frameOf(FrameKind::Reply, in[1], in[0]);
    QFETCH(QString, expected);
    for (int length = 0; length <= whole.request.size(); ++length) {
        QVERIFY(hasLines(whole.request.left(length), whole.bytes));
        QVERIFY(hasLines(whole.bytes, whole.request.left(length)));
    }
    for (int length = 0; length < whole.bytes.size(); ++length) {
        WireFrame cut = whole;
        cut.bytes.truncate(length);
        QVERIFY(hasLines(cut.bytes, cut.request));
        const QString missing = QStringLiteral("%1 byte%2 missing")
                                    .arg(whole.bytes.size() - length)
                                    .arg(text(length + 1 == whole.bytes.size() ? "" : "s"));
        QVERIFY2(meaning(cut).contains(length < 5 ? text("too short") : missing),
                 qPrintable(meaning(cut)));
    }
    QCOMPARE(meaning(whole), expected);
}

void PanelTrace::noise()
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
}

void PanelTrace::longFrames()
{
    QVERIFY(hasLines(QByteArray(100000, '\x10'), QByteArray(70000, '\xFF')));
    // The length byte wraps.
    QCOMPARE(meaning({0, FrameKind::Sent, QByteArray(256, '\0'), {}, true}),
             text("station 0 read INPUT_BIT 0, length 0 (remote, key 0, node 0), 234 value bytes"));
}

QTEST_APPLESS_MAIN(PanelTrace)
#include "tst_panel_trace.moc"

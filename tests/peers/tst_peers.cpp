// The panel program, with the built driver, against a Modbus server that was written elsewhere.
#include "panel/cases.h"
#include "panel_run.h"
#include "peer.h"

#include <set>

class Peers : public QObject
{
    Q_OBJECT
private slots:
    void reads_data() { addCases(); }
    void reads();
    void writes_data() { addCases(); }
    void writes();
    void refused_data() { addCases(); }
    void refused();
    void everyCodeWasServed();

private:
    /// Runs the panel against the peer while it holds `before`.
    void run(const Image& before, const QByteArray& tags, const QByteArray& values);

    const Peer peer = startPeer();
    PanelRun panel;
    Served served;
    std::set<int> codesSeen;
};

namespace
{

Image imageOf(const QByteArray& cells)
{
    Image image = background();
    setCells(cells, &image);
    return image;
}

QList<QByteArray> words(const QByteArray& line)
{
    return line.isEmpty() ? QList<QByteArray>() : line.simplified().split(' ');
}

QString codesText(const QVector<int>& codes)
{
    QStringList texts;
    for (const int code : codes)
        texts << QString::number(code);
    return texts.join(QLatin1Char(' '));
}

} // namespace

void Peers::run(const Image& before, const QByteArray& tags, const QByteArray& values)
{
    peer.replace(before);
    panel = runPanel(peer.link, words(tags), words(values));
    served = peer.replace(background());
    codesSeen.insert(served.codes.begin(), served.codes.end());
}

void Peers::reads()
{
    const QList<QByteArray> in = given(2);
    const Image before = imageOf(in[0]);
    run(before, in[1], {});
    QTEST(codesText(served.codes) + text(": ") + valuesText(panel), "expected");
    QVERIFY2(panel.status == 0, panel.said);
    QCOMPARE(differences(served.held, before), QString());
}

void Peers::writes()
{
    const QList<QByteArray> in = given(3);
    Image image = imageOf(in[0]);
    run(image, in[1], in[2]);
    QFETCH(QString, expected);
    QCOMPARE(codesText(served.codes), expected.section(text(": "), 0, 0));
    setCells(expected.section(text(": "), 1).toUtf8(), &image);
    QCOMPARE(differences(served.held, image), QString());
    QVERIFY2(panel.status == 0, panel.said); // read back as written, too
}

void Peers::refused()
{
    const QList<QByteArray> in = given(3);
    const Image before = imageOf(in[0]);
    run(before, in[1], in[2]);
    QTEST(text("%1: %2").arg(panel.status).arg(valuesText(panel)), "expected");
    QCOMPARE(differences(served.held, before), QString());
}

void Peers::everyCodeWasServed()
{
    QCOMPARE(codesSeen, (std::set<int>{1, 2, 3, 6, 15, 16}));
}

QTEST_GUILESS_MAIN(Peers)
#include "tst_peers.moc"

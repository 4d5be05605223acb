// Which block dates which tag, what a tag's state is then, and what a result counts as.
#include "cases.h"
#include "statistics.h"
#include "tag_file.h"
#include "tag_state.h"

class PanelState : public QObject
{
    Q_OBJECT
private slots:
    void coverage_data() { addCases(); }
    void coverage();
    void quality_data() { addCases(); }
    void quality();
    void results_data() { addCases(); }
    void results();
};

namespace
{

/// The block "TYPE ADDRESS LENGTH STATION".
ImageRange block(const QList<QByteArray>& words)
{
    RW_VAR var;
    while (var.regType < REGISTER_TYPE_COUNT && words[0] != REGISTER_TYPES[var.regType].name)
        ++var.regType;
    var.address = words[1].toInt();
    var.length = words[2].toInt();
    var.station = words[3].toInt();
    return rangeOfBlock(var);
}

} // namespace

void PanelState::coverage()
{
    const QList<QByteArray> in = given(2);
    const Tag tag = parseTags(QString(), text(in[0])).tags[0];
    TagState state = initialState(tag);
    QStringList out;
    for (const QByteArray& step : parts(in[1], ',')) {
        QList<QByteArray> words = step.split(' ');
        const bool failed = words[0] == "!";
        const bool concerned = failed ? markFailed(tag, block(words.mid(1)), &state)
                                      : markReceived(tag, block(words), out.size() + 1, &state);
        out << (concerned ? QString::number(receivedAt(state)) : text("-")) +
                   text(state.failed ? "!" : "");
    }
    QTEST(out.join(QLatin1Char(' ')), "expected");
}

void PanelState::quality()
{
    const QList<QByteArray> in = given(2);
    TagState state;
    state.receivedAt = {in[0] == "never" ? NEVER : in[0].toInt() * MICROS_PER_MILLI};
    state.failed = in[1].contains("failed");
    state.written = in[1].contains("written");
    const Quality quality = qualityOf(state, in[1].contains("silent"), 10000 * MICROS_PER_MILLI,
                                      300 * MICROS_PER_MILLI);
    QTEST(text(qualityText(quality)), "expected");
}

void PanelState::results()
{
    const int code = given(1)[0].toInt();
    Statistics counted;
    countReply(&counted, code);
    QCOMPARE(counted.byResult.size(), 1);
    QTEST(text("%1, %2 good, %3 failed, %4 retries: %5")
              .arg(counted.byResult.firstKey())
              .arg(counted.good)
              .arg(counted.failed)
              .arg(counted.retries)
              .arg(resultMeaning(code)),
          "expected");
}

QTEST_APPLESS_MAIN(PanelState)
#include "tst_panel_state.moc"

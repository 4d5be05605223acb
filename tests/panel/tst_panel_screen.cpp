// The panel at a terminal, as a person sees it: what is typed, and what the screen shows then.
#include "programs.h"
#include "terminal.h"

#include <memory>

// The screen comes to show the pattern.
#define SEES(terminal, pattern)                                                                    \
    QTRY_VERIFY2_WITH_TIMEOUT((terminal).shows(text(pattern)),                                     \
                              qPrintable((terminal).seen().right(700)), PATIENCE_MS)

namespace
{

constexpr int COLUMNS = 120, ROWS = 30;
constexpr int MANY_TAGS = 60;
constexpr const char* SECONDS = "^(\\d+\\.\\d\\d) s ";
constexpr const char* GOOD = "station 1: .*?, (\\d+) good";
constexpr double FASTEST = 1 / 0.045; // reads a second with --delay 45
constexpr const char* KEYS_LINE = "^p pause   w write   s station off/on   q quit   arrows scroll$";

void writeFile(const QString& name, const QByteArray& bytes)
{
    QFile file(name);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("%s", qPrintable(name));
}

/// The demo's tags, and three that are written here; `mirror` shows what the controller has in
/// `free`.
QByteArray demoTags()
{
    QFile demo(text(EXAMPLES "/demo.csv"));
    if (!demo.open(QIODevice::ReadOnly))
        qFatal(EXAMPLES);
    return demo.readAll() + "free,QB2,,,,hex\nmirror,IB2,,,,hex\nsetpoint_2,MW101,,,2\n";
}

QByteArray manyTags()
{
    QByteArray lines;
    for (int i = 0; i < MANY_TAGS; ++i)
        lines += "word_" + QByteArray::number(i) + ",MW" + QByteArray::number(1000 + i) + '\n';
    return lines;
}

/// A controller, and a shell at which the panel can be started.
struct Desk {
    QTemporaryDir directory;
    std::unique_ptr<Plc> plc;
    Terminal terminal;

    explicit Desk(const QByteArray& tags, const char* plcOptions = "")
        : terminal(COLUMNS, ROWS, {text("D=") + directory.path()})
    {
        writeFile(directory.filePath(text("tags.csv")), tags);
        startPlc(plcOptions);
    }
    void startPlc(const QByteArray& options = QByteArray())
    {
        const QString link = text(" --link ") + directory.filePath(text("line"));
        plc = std::make_unique<Plc>((text("--pty ") + text(options)).trimmed() + link);
    }
    QByteArray readFile(const char* name) const
    {
        QFile file(directory.filePath(text(name)));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    /// Leaves the number of the panel's process in the file "pid", says its status when it ends.
    void startPanelAtShell(const char* options = "")
    {
        terminal.enter(text("sh -c 'echo $$ > $D/pid; exec " PANEL_PROGRAM
                            " --library " DRIVER_LIBRARY " --timeout 100 --serial $D/line " +
                            QByteArray(options) + " $D/tags.csv'; echo status $?"));
    }
    qint64 good(int station)
    {
        return terminal.read(text("station %1: .*?, (\\d+) good").arg(station)).toLongLong();
    }
    void input(const char* key, const QString& line)
    {
        terminal.press({text(key)});
        terminal.enter(line);
    }
};

} // namespace

class PanelScreen : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase();
    void tagIsShown_data() { addCases(); }
    void tagIsShown();
    void linesBesideTheTable();
    void refusedInput_data() { addCases(); }
    void refusedInput();
    void editedInput();
    void stationOffAndOn();
    void pause();
    void readsPerSecond();
    void scrolling_data() { addCases(); }
    void scrolling();
    void resizing();
    void linkDown();
    void givesTheTerminalBack_data() { addCases(); }
    void givesTheTerminalBack();

private:
    std::unique_ptr<Desk> m_desk, m_long; // of tests that leave the panel as they found it
};

void PanelScreen::initTestCase()
{
    m_desk = std::make_unique<Desk>(demoTags());
    m_desk->startPanelAtShell();
    SEES(m_desk->terminal, "^setpoint_2 .* 500 .* good ");
}

void PanelScreen::cleanupTestCase()
{
    m_desk.reset();
    m_long.reset();
}

void PanelScreen::tagIsShown()
{
    QFETCH(QString, expected);
    const QList<QByteArray> in = given(2);
    const QString row =
        text("^" + in[0] + " +" + in[1] + " +(?:%1) +0\\.\\d\\d s  good +\\d+\\.\\d$")
            .arg(expected);
    QTRY_VERIFY2_WITH_TIMEOUT(m_desk->terminal.shows(row), qPrintable(m_desk->terminal.seen()),
                              PATIENCE_MS);
}

void PanelScreen::linesBesideTheTable()
{
    Terminal& terminal = m_desk->terminal;
    SEES(terminal, "^\\d+\\.\\d\\d s  link \\S+/line up \\| scan \\d+\\.\\d ms \\| "
                   "queued: 0 writes, 0 reads$");
    SEES(terminal, "^station 1: on, \\d+ good, 0 failed  station 2: on, \\d+ good, 0 failed$");
    SEES(terminal, "^last fail callback: none$");
    SEES(terminal, "^TAG +ADDRESS +VALUE +AGE +QUALITY +READS/S$");
    SEES(terminal, "^ *\\d+\\.\\d\\d s  link to \\S+/line open$");
    QVERIFY2(terminal.look().trimmed().endsWith(text("arrows scroll")),
             qPrintable(terminal.seen()));
    QCOMPARE(terminal.state("alternate_on"), text("1"));

    const auto uptime = [&terminal] { return terminal.read(text("^uptime_ms .* (\\d+) +0")); };
    const int before = uptime().toInt();
    QTRY_VERIFY_WITH_TIMEOUT(uptime().toInt() >= before + 500, PATIENCE_MS);
}

void PanelScreen::refusedInput()
{
    QFETCH(QString, expected);
    const QList<QByteArray> in = given(2);
    m_desk->input(in[0], text(in[1]));
    Terminal& terminal = m_desk->terminal;
    QTRY_VERIFY2_WITH_TIMEOUT(terminal.look().trimmed().endsWith(expected),
                              qPrintable(terminal.seen()), PATIENCE_MS);
    QVERIFY(terminal.shows(text("queued: 0 writes, 0 reads$")));
    QVERIFY2(!terminal.shows(text("write " + in[1])), qPrintable(terminal.seen()));
}

void PanelScreen::editedInput()
{
    Terminal& terminal = m_desk->terminal;
    terminal.press({text("w")});
    terminal.type(text("qps setpoint=45"));
    terminal.press({text("BSpace")});
    SEES(terminal, "^write NAME=VALUE: qps setpoint=4$");
    terminal.press({text("Escape")});
    SEES(terminal, KEYS_LINE);
    SEES(terminal, "^\\d+\\.\\d\\d s  link"); // not paused by the p

    terminal.press({text("w"), text("BSpace")});
    SEES(terminal, "^write NAME=VALUE:$");
    terminal.enter(text("free=5a"));
    SEES(terminal, "^free .* 0x5a .* good ");
    SEES(terminal, "^mirror .* 0x5a .* good ");
    SEES(terminal, " s  write free=0x5a done, finish callback state 1$");
    SEES(terminal, " s  read back free=0x5a \\(as written\\)$");
    SEES(terminal, "^setpoint .* 500 .* good ");
}

void PanelScreen::stationOffAndOn()
{
    Terminal& terminal = m_desk->terminal;
    m_desk->input("s", text("2"));
    SEES(terminal, "station 2: OFF by hand, \\d+ good");
    SEES(terminal, "^level_2 .* off ");
    SEES(terminal, " s  station 2 switched off by hand$");
    const qint64 standing = m_desk->good(2), going = m_desk->good(1);
    m_desk->input("w", text("setpoint_2=123"));
    SEES(terminal, "queued: 1 writes");
    QTRY_VERIFY_WITH_TIMEOUT(m_desk->good(1) > going + 50, PATIENCE_MS);
    SEES(terminal, "^level .* good ");
    QCOMPARE(m_desk->good(2), standing);

    m_desk->input("s", text("2"));
    SEES(terminal, "station 2: on, \\d+ good");
    SEES(terminal, "^setpoint_2 .* 123 .* good ");
    SEES(terminal, "queued: 0 writes");
    QTRY_VERIFY_WITH_TIMEOUT(m_desk->good(2) > standing + 5, PATIENCE_MS);
}

void PanelScreen::pause()
{
    Terminal& terminal = m_desk->terminal;
    terminal.press({text("p")});
    SEES(terminal, "^PAUSED \\d");
    const qint64 standing = m_desk->good(1);
    QVERIFY(standing > 0);
    SEES(terminal, "^level .* 1\\.\\d\\d s  good ");
    QCOMPARE(m_desk->good(1), standing);
    terminal.press({text("p")});
    SEES(terminal, "^\\d+\\.\\d\\d s  link");
    QTRY_VERIFY_WITH_TIMEOUT(m_desk->good(1) > standing + 5, PATIENCE_MS);
    SEES(terminal, "^level .* 0\\.\\d\\d s  good ");
}

void PanelScreen::readsPerSecond()
{
    // One tag, one block: it is read once for each good exchange.
    Desk desk("word,MW1000\n");
    desk.startPanelAtShell("--delay 45");
    Terminal& terminal = desk.terminal;
    SEES(terminal, "^word .* good +[1-9]\\d*\\.\\d$");
    const auto number = [](const QString& screen, const char* pattern) {
        return Terminal::find(screen, text(pattern)).toDouble();
    };
    const QString first = terminal.look();
    QString last;
    const auto passed = [&] {
        last = terminal.look();
        return number(last, SECONDS) - number(first, SECONDS);
    };
    QTRY_VERIFY2_WITH_TIMEOUT(passed() > 2, qPrintable(last), PATIENCE_MS);
    const double counted = (number(last, GOOD) - number(first, GOOD)) / passed();
    const double shown = number(last, "^word .* ([0-9.]+)$");
    QVERIFY2(shown <= FASTEST && qAbs(shown - counted) < counted / 4,
             qPrintable(text("%1 shown, %2 counted").arg(shown).arg(counted)));
}

void PanelScreen::scrolling()
{
    QFETCH(QString, expected);
    if (!m_long) {
        m_long = std::make_unique<Desk>(manyTags());
        m_long->startPanelAtShell();
    }
    Terminal& terminal = m_long->terminal;
    terminal.press({text("PPage"), text("PPage"), text("PPage")});
    SEES(terminal, "^TAG 1-20/60 +ADDRESS ");
    terminal.press(text(given(1)[0]).split(QLatin1Char(' ')));
    QTRY_VERIFY2_WITH_TIMEOUT(terminal.shows(text("^TAG %1/60 +ADDRESS ").arg(expected)),
                              qPrintable(terminal.seen()), PATIENCE_MS);
    QCOMPARE(terminal.read(text("^TAG .*\nword_(\\d+) ")).toInt() + 1,
             expected.section(QLatin1Char('-'), 0, 0).toInt());
}

void PanelScreen::resizing()
{
    Desk desk(manyTags());
    desk.startPanelAtShell();
    Terminal& terminal = desk.terminal;
    SEES(terminal, "^TAG 1-20/60 ");
    terminal.press({text("NPage"), text("NPage")});
    SEES(terminal, "^TAG 41-60/60 ");
    terminal.resize(COLUMNS, 40); // which leaves no room below the last row
    SEES(terminal, "^TAG 31-60/60 .*\nword_30 ");
    terminal.resize(40, 20);
    SEES(terminal, "^TAG 31-40/60 .*\nword_30 ");
    SEES(terminal, "^\\d.*(\n.*){18}\np pause   w write   s station off/on   q$");
    QVERIFY2(!terminal.shows(text("^word_40 ")), qPrintable(terminal.seen()));
}

void PanelScreen::linkDown()
{
    Desk desk(demoTags());
    desk.startPanelAtShell();
    Terminal& terminal = desk.terminal;
    SEES(terminal, "^setpoint .* 500 .* good ");
    const QString red = text("\033\\[31m(?:\033\\[49m)?");
    QVERIFY(Terminal::find(terminal.lookAtColours(), red).isNull());

    desk.plc.reset();
    SEES(terminal, " s  link to \\S+/line lost: the device is gone$");
    SEES(terminal,
         "line DOWN \\(No such file or directory\\), next try in [0-8]\\.\\d\\d s \\| scan");
    SEES(terminal, "^setpoint .* 500 .* stale ");
    for (const char* row : {"\\d+\\.\\d\\d s  link", "level "})
        QVERIFY2(!Terminal::find(terminal.lookAtColours(), red + text(row)).isNull(), row);

    desk.startPlc();
    SEES(terminal, "line up \\| scan");
    SEES(terminal, "^setpoint .* 500 .* good ");
}

void PanelScreen::givesTheTerminalBack()
{
    const QList<QByteArray> in = given(2);
    Desk desk(demoTags(), in[0]);
    Terminal& terminal = desk.terminal;
    terminal.enter(text("stty -a > $D/before; echo typed before"));
    SEES(terminal, "^typed before$");
    desk.startPanelAtShell();
    SEES(terminal, "^level .* good ");
    QCOMPARE(terminal.state("alternate_on"), text("1"));
    desk.input("w", text("setpoint=70000"));
    SEES(terminal, "^not written: ");

    const QByteArray how = in[1].mid(in[1].indexOf(' ') + 1);
    if (in[1].startsWith("key"))
        terminal.press({text(how)});
    else
        QCOMPARE(::kill(desk.readFile("pid").trimmed().toInt(), how == "HUP" ? SIGHUP : SIGTERM),
                 0);
    QString status;
    const auto ended = [&] {
        status = Terminal::find(terminal.lookBack(), text("^status (\\d+)$"));
        return !status.isNull();
    };
    QTRY_VERIFY2_WITH_TIMEOUT(ended(), qPrintable(terminal.seen()), PATIENCE_MS);
    QTEST(status, "expected");
    const QString back = terminal.lookBack();
    for (const char* line : {"^typed before$", "^Ran \\d", "^Writes: 0: ", "^Tags at the end: 17$"})
        QVERIFY2(!Terminal::find(back, text(line)).isNull(), qPrintable(back));
    QVERIFY2(Terminal::find(back, text(KEYS_LINE)).isNull(), qPrintable(back));
    QCOMPARE(terminal.state("alternate_on"), text("0"));
    QCOMPARE(terminal.state("cursor_flag"), text("1"));
    terminal.enter(text("stty -a > $D/after; echo typed $((40 + 2))"));
    SEES(terminal, "^[#$] stty -a .*typed \\$\\(\\(40 \\+ 2\\)\\)\ntyped 42$");
    QVERIFY(desk.readFile("before").contains(" echo "));
    QCOMPARE(text(desk.readFile("after")), text(desk.readFile("before")));
}

QTEST_GUILESS_MAIN(PanelScreen)
#include "tst_panel_screen.moc"

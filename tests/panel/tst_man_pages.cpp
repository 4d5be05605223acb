// The manual pages describe the options that the programs have, all of them and no others.
#include <QtTest>

class ManPages : public QObject
{
    Q_OBJECT
private slots:
    void lint_data() { addPrograms(); }
    void lint();
    void options_data() { addPrograms(); }
    void options();

private:
    static void addPrograms();
};

namespace
{

constexpr int PATIENCE_MS = 20000;
constexpr const char* WIDE = "width=1000"; // a paragraph is a line

struct Option {
    QString name;
    bool takesValue = false;
    QString preset; ///< null: none is told
};

QString run(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    if (!process.waitForFinished(PATIENCE_MS))
        qFatal("%s", qPrintable(program));
    return QString::fromUtf8(process.readAll());
}

/// What --help says, an option and its text in one line each.
QVector<Option> optionsOf(const QString& help)
{
    const QRegularExpression wrap(QStringLiteral("\\n {20,}"));
    const QRegularExpression option(QStringLiteral("^  (?:-h, )?--([a-z-]+)( <[^>]+>)? +(.*)$"),
                                    QRegularExpression::MultilineOption);
    const QRegularExpression preset(QStringLiteral("\\(default ([^)]*)\\)"));
    QVector<Option> options;
    for (auto it = option.globalMatch(QString(help).replace(wrap, QStringLiteral(" ")));
         it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        options << Option{match.captured(1), !match.captured(2).isEmpty(),
                          preset.match(match.captured(3)).captured(1)};
    }
    return options;
}

/// The page as it is read, without the overstriking that makes letters bold.
QString rendered(const QString& page)
{
    static const QRegularExpression overstrike(QStringLiteral(".\\x08"));
    return run(QStringLiteral(MANDOC),
               {QStringLiteral("-Tutf8"), QStringLiteral("-O"), QLatin1String(WIDE), page})
        .remove(overstrike);
}

/// The paragraph that describes the option, empty when there is none.
QString description(const QString& page, const Option& option)
{
    const QRegularExpression head(
        QStringLiteral("^ +(?:-h, )?--%1%2(?:\\n +| {2,})(\\S.*)$")
            .arg(option.name, option.takesValue ? QStringLiteral(" \\S+") : QString()),
        QRegularExpression::MultilineOption);
    return head.match(page).captured(1);
}

} // namespace

void ManPages::addPrograms()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("page");
    const QString pages = QStringLiteral(PAGES "/");
    for (const char* program : {PANEL_PROGRAM, PLC_PROGRAM}) {
        const QString name = QFileInfo(QString::fromUtf8(program)).fileName();
        QTest::newRow(qPrintable(name))
            << QString::fromUtf8(program) << pages + name + QStringLiteral(".1");
    }
}

void ManPages::lint()
{
    QFETCH(QString, page);
    QVERIFY(QFile::exists(page));
    QCOMPARE(
        run(QStringLiteral(MANDOC), {QStringLiteral("-Tlint"), QStringLiteral("-Wwarning"), page}),
        QString());
}

void ManPages::options()
{
    QFETCH(QString, program);
    QFETCH(QString, page);
    const QVector<Option> options = optionsOf(run(program, {QStringLiteral("--help")}));
    QVERIFY(options.size() > 5);
    const QString text = rendered(page);
    QStringList names;
    for (const Option& option : options) {
        names << option.name;
        const QString said = description(text, option);
        QVERIFY2(!said.isEmpty(), qPrintable(option.name));
        QVERIFY2(option.preset.isNull() ||
                     said.contains(QStringLiteral("Default: ") + option.preset),
                 qPrintable(option.name + QStringLiteral(": ") + said));
    }
    const QRegularExpression mention(QStringLiteral("--([a-z][a-z-]*)"));
    for (auto it = mention.globalMatch(text); it.hasNext();) {
        const QString name = it.next().captured(1);
        QVERIFY2(names.contains(name), qPrintable(name));
    }
}

QTEST_GUILESS_MAIN(ManPages)
#include "tst_man_pages.moc"

#include <QProcess>
#include <QStringList>
#include <QtTest>

/// What the dynamic linker sees of the library.
class Exports : public QObject
{
    Q_OBJECT

    /// The words of each line that a tool says about the library.
    static QList<QStringList> said(const char* command)
    {
        QProcess process;
        process.start(QString::fromLatin1(command).section(QLatin1Char(' '), 0, 0),
                      QString::fromLatin1(command).split(QLatin1Char(' ')).mid(1)
                          << QString::fromLatin1(KP410_LIBRARY));
        process.waitForFinished();
        QList<QStringList> lines;
        for (const QString& line :
             QString::fromLatin1(process.readAllStandardOutput()).split(QLatin1Char('\n')))
            lines << line.simplified().split(QLatin1Char(' '));
        return lines;
    }

    static QStringList dynamicEntries(const char* tag)
    {
        QStringList values;
        for (const QStringList& words : said("objdump -p")) {
            if (words.size() == 2 && words.at(0) == QLatin1String(tag))
                values << words.at(1);
        }
        return values;
    }

private slots:
    void symbols()
    {
        QStringList expected =
            QString::fromLatin1(
                "SetComInfo RegistCallBackFuncIntf FlashLocalRegister QueryFinishFlag "
                "EnCommStation "
                "EnableEthernet ComCommunication DataCom AddListReadVar AddListWriteVar "
                "AddListOnceReadVar ReCreatReadVarList WhetherGroup PLCAddressChangeIntef "
                "GetRegisterData SetRegisterData customMessageHandler CalSUM CalCRC CalLRC CalXOR "
                "DigitalToASCII ASCIIToDigital PLC_driver DataStorage LB LW RWI")
                .split(QLatin1Char(' '));
        QStringList exported;
        for (const QStringList& words : said("nm -D --defined-only --format=posix")) {
            if (words.size() > 1)
                exported << words.at(0);
        }
        expected.sort();
        exported.sort();
        QCOMPARE(exported.join(QLatin1String("\n")), expected.join(QLatin1String("\n")));
    }

    void name()
    {
        QCOMPARE(dynamicEntries("SONAME"), QStringList()
                                               << QString::fromLatin1("libtalmor_kp410_port.so.1"));
        QVERIFY(QFile::exists(QString::fromLatin1(KP410_SONAME_FILE)));
    }

    void dependencies()
    {
        const QStringList needed = dynamicEntries("NEEDED");
        QVERIFY(!needed.filter(QLatin1String("libQt5Core")).isEmpty());
        QCOMPARE(needed.filter(QLatin1String("Qt")).size(), 1);
    }
};

QTEST_APPLESS_MAIN(Exports)
#include "tst_exports.moc"

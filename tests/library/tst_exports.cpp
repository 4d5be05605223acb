#include <QProcess>
#include <QStringList>
#include <QtTest>

/// What the dynamic linker sees of the library.
class Exports : public QObject
{
    Q_OBJECT

    static QStringList output(const char* program, const QStringList& arguments)
    {
        QProcess process;
        process.start(QString::fromLatin1(program), arguments);
        if (!process.waitForFinished() || process.exitCode() != 0)
            return QStringList();
        return QString::fromLatin1(process.readAllStandardOutput()).split(QLatin1Char('\n'));
    }

    static QStringList dynamicEntries(const char* tag)
    {
        QStringList values;
        for (const QString& line :
             output("objdump", QStringList() << QString::fromLatin1("-p") << library())) {
            const QStringList words = line.simplified().split(QLatin1Char(' '));
            if (words.size() == 2 && words.at(0) == QLatin1String(tag))
                values << words.at(1);
        }
        return values;
    }

    static QString library() { return QString::fromLatin1(KP410_LIBRARY); }

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
        const QStringList arguments =
            QStringList() << QString::fromLatin1("-D") << QString::fromLatin1("--defined-only")
                          << QString::fromLatin1("--format=posix") << library();
        for (const QString& line : output("nm", arguments)) {
            if (!line.isEmpty())
                exported << line.section(QLatin1Char(' '), 0, 0);
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

#include "support/bytes.h"
#include "support/library.h"

#include <QStringList>
#include <QtTest>

namespace
{
QStringList events;

void onFinish(int cookie, int key, int subKey, int state)
{
    events << QString::fromLatin1("finish %1 %2 %3 %4").arg(cookie).arg(key).arg(subKey).arg(state);
}

void onFail(QList<RW_VAR>* vars, int key, int flag)
{
    events << QString::fromLatin1("fail %1 %2 %3").arg(vars->size()).arg(key).arg(flag);
}
} // namespace

/// The whole road through the library, in a host that has things of the same names.
class Loaded : public QObject
{
    Q_OBJECT

private slots:
    void theWholeRoad()
    {
        // Visible to everything that is loaded later, as the symbols of a host are.
        void* host = dlopen(NAMESAKE, RTLD_NOW | RTLD_GLOBAL);
        QVERIFY2(host, dlerror());
        const Library library(KP410_LIBRARY);
        QVERIFY2(library.isLoaded(), dlerror());
        auto* const setComInfo = BIND(library, SetComInfo);
        auto* const registerCallbacks = BIND(library, RegistCallBackFuncIntf);
        auto* const flashLocalRegister = BIND(library, FlashLocalRegister);
        auto* const nextFrame = BIND(library, ComCommunication);
        auto* const takeReply = BIND(library, DataCom);
        auto* const regroup = BIND(library, ReCreatReadVarList);
        auto* const getData = BIND(library, GetRegisterData);
        auto* const setData = BIND(library, SetRegisterData);
        auto* const switchStation = BIND(library, EnCommStation);
        auto* const driver = BIND(library, PLC_driver);
        auto* const lb = BIND(library, LB);
        QVERIFY(setComInfo && registerCallbacks && flashLocalRegister && nextFrame && takeReply);
        QVERIFY(regroup && getData && setData && switchStation && driver && lb);

        ComInfo settings = ComInfo();
        settings.maxBlockLength = 10;
        settings.stationPerVar = 1;
        settings.writeMode = WRITE_QUEUE;
        settings.hostCookie = 99;
        setComInfo(&settings);
        registerCallbacks(onFinish, onFail);
        int area = 0;
        flashLocalRegister(&area, nullptr, nullptr);
        QCOMPARE(*lb, static_cast<void*>(&area));

        VAR_DESC desc = VAR_DESC();
        desc.regType = MEMORY_WORD;
        desc.station = 1;
        desc.addressText = text("100");
        desc.length = 2;
        QList<VAR_DESC> vars;
        vars << desc;
        QCOMPARE(regroup(&vars), 1);

        Protocol* frame = nextFrame();
        QVERIFY(frame);
        QCOMPARE(frame->frame, bytes("01 03 00 64 00 02 85 D4"));
        QByteArray reply = bytes("01 03 04 00 0A 01 02 5A 60");
        QCOMPARE(takeReply(&reply, reply.size())->result, 1);
        QString address = text("100");
        QByteArray out;
        QCOMPARE(getData(0, MEMORY_WORD, &address, 1, &out, 2), 1);
        QCOMPARE(out, bytes("0A 00 02 01"));

        QString label = text("setpoint");
        QString target = text("10");
        QByteArray value = bytes("34 12");
        QCOMPARE(setData(&label, MEMORY_WORD, &target, 1, &value, 1, 6, 7), 1);
        QCOMPARE(driver->writeList.size(), 1);
        frame = nextFrame();
        QVERIFY(frame);
        QCOMPARE(frame->frame, bytes("01 06 00 0A 12 34 A4 BF"));
        QByteArray nothing;
        QCOMPARE(takeReply(&nothing, 0)->result, 47);
        QCOMPARE(events, QStringList() << text("finish 99 6 7 2") << text("fail 0 6 1"));
        QCOMPARE(driver->writeList.size(), 0);

        switchStation(1, 0);
        QVERIFY(!nextFrame());
        QCOMPARE(settings.scanDone, 1);
        dlclose(host);
    }

    void unloadedAndLoadedAgainItIsNew()
    {
        const Library library(KP410_LIBRARY);
        QVERIFY(library.isLoaded());
        QCOMPARE(BIND(library, PLC_driver)->readList.size(), 0);
        QVERIFY(BIND(library, PLC_driver)->stationMap.isEmpty());
        QVERIFY(BIND(library, DataStorage)->isEmpty());
        QVERIFY(!*BIND(library, LB));
    }
};

QTEST_APPLESS_MAIN(Loaded)
#include "tst_loaded.moc"

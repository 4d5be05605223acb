// Memory images: what a line says, what is wrong with one, and that a memory survives.
#include "panel/cases.h"
#include "plc/image.h"
#include "plc/image_file.h"

#include <QTemporaryDir>

using namespace plc;

namespace
{
Controller stations()
{
    return makeController({1, 2}, LOCAL_FRAMING, false);
}

Image parse(const QByteArray& lines)
{
    return parseImage(text("m.txt"), text(lines), {1, 2});
}

/// The lines of the saved image but its heading.
QString saved(const Controller& controller)
{
    const QStringList lines = imageText(controller).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    return lines.size() == 1 ? text("nothing") : lines.mid(1).join(text("; "));
}
} // namespace

class ImageTest : public QObject
{
    Q_OBJECT
private slots:
    void savedAs_data() { addCases(); }
    void savedAs()
    {
        Controller controller = stations();
        const Image image = parse(given(1)[0].replace(';', '\n'));
        QCOMPARE(image.errors, QStringList());
        applyImage(image, controller);
        QTEST(saved(controller), "expected");
    }

    void wrongLine_data() { addCases(); }
    void wrongLine()
    {
        const Image image = parse(given(1)[0]);
        QCOMPARE(image.errors.size(), 1);
        QVERIFY(image.runs.isEmpty());
        QFETCH(QString, expected);
        const QString complaint = image.errors[0].section(QLatin1Char(':'), 2);
        QVERIFY2(complaint.startsWith(expected), qPrintable(complaint));
    }

    void allWrongLinesAtOnce()
    {
        const Image image = parse("# m\r\n1 memory 1 = 2\r\n\r\n1 memory = 2\n3 memory 1 = 2\n  x");
        QStringList places;
        for (const QString& error : image.errors)
            places << error.section(QLatin1Char(' '), 0, 1);
        QCOMPARE(places, QStringList({text("m.txt:4:10: expected"), text("m.txt:5:1: expected"),
                                      text("m.txt:6:3: expected")}));
    }

    void everyElementSurvives()
    {
        // Zeros at the ends of rows and inside them, and whole rows of the bits.
        Controller controller = stations();
        for (auto it = controller.stations.begin(); it != controller.stations.end(); ++it) {
            Memory& memory = it->memory;
            Generator random(static_cast<quint32>(it.key()));
            for (QBitArray* bits : {&memory.inputBits, &memory.outputBits, &memory.specialBits})
                for (int i = 0; i < bits->size(); ++i)
                    bits->setBit(i, random() % 8 == 0);
            for (QVector<quint16>* words : {&memory.memoryWords, &memory.specialWords})
                for (quint16& word : *words)
                    word = static_cast<quint16>(random() % 5 == 0 ? 0 : random() & 0xFFFF);
        }
        const QTemporaryDir directory;
        const QString path = directory.filePath(text("image"));
        QCOMPARE(trySaving(path), QString());
        QVERIFY(!QFile::exists(path));
        QCOMPARE(saveImage(path, controller), QString());
        const LoadedImage loaded = loadImage(path, {1, 2});
        QCOMPARE(loaded.error, QString());
        QCOMPARE(loaded.image.errors, QStringList());
        Controller copy = stations();
        applyImage(loaded.image, copy);
        QCOMPARE(imageText(copy), imageText(controller));
        for (const int number : {1, 2}) {
            const Memory& one = controller.stations[number].memory;
            const Memory& other = copy.stations[number].memory;
            QCOMPARE(other.inputBits, one.inputBits);
            QCOMPARE(other.outputBits, one.outputBits);
            QCOMPARE(other.memoryWords, one.memoryWords);
            QCOMPARE(other.specialBits, one.specialBits);
            QCOMPARE(other.specialWords, one.specialWords);
        }
    }

    void whatCannotBeOpened()
    {
        const QTemporaryDir directory;
        QVERIFY(loadImage(directory.filePath(text("none")), {1}).error.contains(text("none: ")));
        QVERIFY(loadImage(directory.path(), {1}).error.startsWith(text("cannot load ")));
        const QString nowhere = directory.filePath(text("none/image"));
        QVERIFY(trySaving(nowhere).startsWith(text("cannot save ")));
        QVERIFY(saveImage(nowhere, stations()).startsWith(text("cannot save ")));
    }
};

QTEST_APPLESS_MAIN(ImageTest)
#include "tst_plc_image.moc"

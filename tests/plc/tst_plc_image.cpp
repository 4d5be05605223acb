// Memory images: what a line says, what is wrong with one, and that a memory survives.
#include "plc/image.h"
#include "plc/image_file.h"
#include "support/cases.h"

using namespace plc;

namespace
{
Controller stations()
{
    return makeController({1, 2}, LOCAL_FRAMING, false);
}

/// Lines with ; between them: the complaints, or the lines of the saved image but its heading.
QString loaded(const Given& in)
{
    QByteArray lines = in[0];
    const Image image =
        parseImage(text("m.txt"), text(lines.replace(';', '\n').replace("\\r", "\r")), {1, 2});
    if (!image.errors.isEmpty())
        return image.errors.join(text("; "));
    Controller controller = stations();
    applyImage(image, controller);
    const QStringList saved = imageText(controller).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    return saved.size() == 1 ? text("nothing") : saved.mid(1).join(text("; "));
}
} // namespace

class ImageTest : public CaseTest
{
    Q_OBJECT
public:
    ImageTest() : CaseTest(CASES, {{"loaded", 1, loaded}}) {}
private slots:
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
};

QTEST_APPLESS_MAIN(ImageTest)
#include "tst_plc_image.moc"

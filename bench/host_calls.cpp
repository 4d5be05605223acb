#include "driver.h"
#include "work.h"

namespace
{
constexpr int WORD_BYTES = 2;
constexpr int FIRST_WORD = 100;

QString label, address;
QByteArray value, expected;
int type = MEMORY_WORD;
int count = 0;
qint64 returned = 0;

void prepare(int ofType, const QString& at, int elements)
{
    label = QStringLiteral("setpoint");
    type = ofType;
    address = at;
    count = elements;
    returned = 0;
}

void prepareGet(int ofType, const QString& at, int elements, int bytes)
{
    constexpr int imageBytes = 4096;
    prepare(ofType, at, elements);
    image(AREA_MEMORY) = pattern(imageBytes);
    expected = image(AREA_MEMORY).mid(FIRST_WORD * WORD_BYTES, bytes);
}

void setUpGetWords(int words)
{
    prepareGet(MEMORY_WORD, QString::number(FIRST_WORD), words, WORD_BYTES * words);
}

void setUpGetDwords(int dwords)
{
    constexpr int words = 2; // of one double word; it is addressed by its own number
    prepareGet(MEMORY_DWORD, QString::number(FIRST_WORD / words), words * dwords,
               words * WORD_BYTES * dwords);
}

void setUpGetBits(int bits)
{
    constexpr int byteBits = 8;
    prepareGet(MEMORY_BIT, QString::number(FIRST_WORD * WORD_BYTES) + QLatin1String(".0"), bits,
               (bits + byteBits - 1) / byteBits);
    const QByteArray packed = expected;
    expected.clear();
    for (int i = 0; i < bits; ++i)
        expected.append(static_cast<char>((packed.at(i / byteBits) >> (i % byteBits)) & 1));
}

void setUpFirstTouch(int word)
{
    prepare(MEMORY_WORD, QString::number(word), 1);
    expected = QByteArray(WORD_BYTES, '\0');
}

void get()
{
    returned += driver.getRegisterData(0, type, &address, STATION, &value, count);
}

void checkGet(int /*size*/, qint64 operations)
{
    expect("calls that returned 1", returned, operations);
    value = QByteArray();
    get();
    expect("the stored value is read", value == expected ? 1 : 0, 1);
}

void forgetImage()
{
    image(AREA_MEMORY).clear();
}

void checkFirstTouch(int word, qint64 operations)
{
    checkGet(word, operations);
    constexpr int widestElement = 4;
    expect("bytes of the image", image(AREA_MEMORY).size(), word * WORD_BYTES + widestElement);
}

void setUpSet(int words)
{
    prepare(MEMORY_WORD, QString::number(FIRST_WORD), words);
    expected = pattern(words * WORD_BYTES);
}

void setUpStoreOnly(int words)
{
    setUpSet(words);
    settings.writeMode = WRITE_STORE_ONLY;
}

void set()
{
    value = expected;
    returned += driver.setRegisterData(&label, type, &address, STATION, &value, count, 0, 0);
}

void unqueue()
{
    driver.state->writeList.removeLast();
}

void checkQueued(int words, qint64 operations)
{
    expect("calls that returned 1", returned, operations);
    set();
    expect("writes pending", driver.state->writeList.size(), 1);
    const RW_VAR& write = driver.state->writeList.at(0);
    expect("words of the write", write.length, words);
    expect("the value is queued", write.data == expected ? 1 : 0, 1);
}

void checkStored(int words, qint64 operations)
{
    expect("calls that returned 1", returned, operations);
    expect("writes pending", driver.state->writeList.size(), 0);
    image(AREA_MEMORY).fill('\0');
    set();
    const QByteArray stored = image(AREA_MEMORY).mid(FIRST_WORD * WORD_BYTES, words * WORD_BYTES);
    expect("the value is in the store", stored == expected ? 1 : 0, 1);
}
} // namespace

const Work GET_WORDS = {setUpGetWords, get, nullptr, checkGet};
const Work GET_BITS = {setUpGetBits, get, nullptr, checkGet};
const Work GET_DWORDS = {setUpGetDwords, get, nullptr, checkGet};
const Work GET_FIRST_TOUCH = {setUpFirstTouch, get, forgetImage, checkFirstTouch};
const Work SET_QUEUED = {setUpSet, set, unqueue, checkQueued};
const Work SET_STORE_ONLY = {setUpStoreOnly, set, nullptr, checkStored};

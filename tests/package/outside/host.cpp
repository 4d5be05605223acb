#include <talmor_kp410_port.h>

#include <cstdio>

int main()
{
    static ComInfo settings = {};
    settings.maxBlockLength = 60;
    settings.defaultStation = 1;
    VAR_DESC tag = {};
    tag.regType = MEMORY_WORD;
    tag.addressText = QString::fromLatin1("100");
    tag.length = 1;
    QList<VAR_DESC> tags = {tag};
    SetComInfo(&settings);
    ReCreatReadVarList(&tags);
    const Protocol* frame = ComCommunication();
    std::puts(frame ? frame->frame.toHex().constData() : "no frame");
}

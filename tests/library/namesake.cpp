// What a host may well have of its own. Loaded before the driver and visible to it, none of this
// may take the place of the driver's own code and objects.
#include <QList>
#include <QMap>
#include <QString>

struct RW_VAR {
    QString text;
    int numbers[100];
    bool operator==(const RW_VAR& other) const { return text == other.text; }
};
template class QList<RW_VAR>;

extern "C" {
int LB = 1;
int PLC_driver[200];
int DataStorage[2];

unsigned short CalCRC(const unsigned char*, unsigned short);
unsigned short CalCRC(const unsigned char*, unsigned short)
{
    return 0;
}

int AddListWriteVar(RW_VAR*, int);
int AddListWriteVar(RW_VAR*, int)
{
    return -1;
}
}

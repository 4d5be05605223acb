// The records cross the boundary as raw memory. Each offset that a runtime relies on stands here,
// so that no compiler, flag or edit can move a field unnoticed.
#include "talmor_kp410_port.h"

#define KP410_AT(record, field, offset)                                                            \
    static_assert(offsetof(record, field) == (offset), #record "::" #field " has moved")

KP410_AT(ComInfo, maxBlockLength, 16);
KP410_AT(ComInfo, defaultStation, 24);
KP410_AT(ComInfo, retryLimit, 28);
KP410_AT(ComInfo, retryCount, 32);
KP410_AT(ComInfo, stationPerVar, 36);
KP410_AT(ComInfo, hostArea40, 40);
KP410_AT(ComInfo, frameCount, 44);
KP410_AT(ComInfo, framesDone, 48);
KP410_AT(ComInfo, hostArea52, 52);
KP410_AT(ComInfo, remoteFraming, 56);
KP410_AT(ComInfo, ownNode, 60);
KP410_AT(ComInfo, writeMode, 64);
KP410_AT(ComInfo, scanDone, 68);
KP410_AT(ComInfo, hostCookie, 72);

#if __SIZEOF_POINTER__ == 4
KP410_AT(RW_VAR, hostKey, 0);
KP410_AT(RW_VAR, hostSubKey, 4);
KP410_AT(RW_VAR, rwFlag, 8);
KP410_AT(RW_VAR, remoteMode, 12);
KP410_AT(RW_VAR, nodeId, 16);
KP410_AT(RW_VAR, result, 20);
KP410_AT(RW_VAR, label, 24);
KP410_AT(RW_VAR, addressText, 28);
KP410_AT(RW_VAR, regType, 32);
KP410_AT(RW_VAR, address, 36);
KP410_AT(RW_VAR, station, 40);
KP410_AT(RW_VAR, length, 44);
KP410_AT(RW_VAR, rmwStep, 48);
KP410_AT(RW_VAR, auxParam, 52);
KP410_AT(RW_VAR, data, 56);
KP410_AT(Protocol, frame, 0);
KP410_AT(Protocol, frameLength, 4);
KP410_AT(Protocol, replyLength, 8);
KP410_AT(Protocol, replyDataOffset, 12);
KP410_AT(Protocol, replyDataLength, 16);
KP410_AT(Protocol, var, 20);
KP410_AT(Protocol, reserved1, 80);
KP410_AT(Protocol, reserved2, 84);
KP410_AT(Protocol, reserved3, 88);
KP410_AT(EXTENDVAR, data, 12);
KP410_AT(VAR_DESC, regType, 1);
KP410_AT(VAR_DESC, station, 2);
KP410_AT(VAR_DESC, addressText, 8);
KP410_AT(VAR_DESC, label, 12);
KP410_AT(VAR_DESC, length, 16);
#endif

#define KP410_BEHIND(member, next)                                                                 \
    static_assert(offsetof(Communication_Protocol, member) <                                       \
                      offsetof(Communication_Protocol, next),                                      \
                  #next " has moved before " #member)

KP410_BEHIND(comInfo, readList);
KP410_BEHIND(readList, writeList);
KP410_BEHIND(writeList, onceReadList);
KP410_BEHIND(onceReadList, spareList);
KP410_BEHIND(spareList, frameList);
KP410_BEHIND(frameList, extendList);
KP410_BEHIND(extendList, finishCallback);
KP410_BEHIND(finishCallback, failCallback);
KP410_BEHIND(failCallback, listMutex);
KP410_BEHIND(listMutex, storageMutex);
KP410_BEHIND(storageMutex, stationMutex);
KP410_BEHIND(stationMutex, stationMap);
KP410_BEHIND(stationMap, retVar);
KP410_BEHIND(retVar, currentSource);
KP410_BEHIND(currentSource, writeBurst);
KP410_BEHIND(writeBurst, onceReadBurst);
KP410_BEHIND(onceReadBurst, scanCount);
KP410_BEHIND(scanCount, lastFailed);

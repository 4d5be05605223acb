// The driver, loaded at run time and bound by name.
#pragma once

#include "talmor_kp410_port.h"

#include <QStringList>

#include <memory>

struct DriverApi {
    decltype(&::SetComInfo) setComInfo = nullptr;
    decltype(&::RegistCallBackFuncIntf) registCallBackFuncIntf = nullptr;
    decltype(&::ReCreatReadVarList) reCreatReadVarList = nullptr;
    decltype(&::ComCommunication) comCommunication = nullptr;
    decltype(&::DataCom) dataCom = nullptr;
    decltype(&::GetRegisterData) getRegisterData = nullptr;
    decltype(&::SetRegisterData) setRegisterData = nullptr;
    decltype(&::EnCommStation) enCommStation = nullptr;
    Communication_Protocol* state = nullptr;
    void* handle = nullptr;
};

/// Loads the first of `candidates` that there is. @param error says why there is none, or which
/// names are missing; the handle is null then.
DriverApi loadDriver(const QStringList& candidates, QString* error);
void unloadDriver(DriverApi* api);

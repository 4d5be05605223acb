#include "driver_api.h"

#include <QFile>

#include <dlfcn.h>

namespace
{

template <class Function>
void bind(void* handle, const char* name, Function* function, QStringList* missing)
{
    *function = reinterpret_cast<Function>(dlsym(handle, name));
    if (*function == nullptr)
        *missing << QLatin1String(name);
}

QStringList bindAll(DriverApi* api)
{
    QStringList missing;
    void* const handle = api->handle;
    bind(handle, "SetComInfo", &api->setComInfo, &missing);
    bind(handle, "RegistCallBackFuncIntf", &api->registCallBackFuncIntf, &missing);
    bind(handle, "ReCreatReadVarList", &api->reCreatReadVarList, &missing);
    bind(handle, "ComCommunication", &api->comCommunication, &missing);
    bind(handle, "DataCom", &api->dataCom, &missing);
    bind(handle, "GetRegisterData", &api->getRegisterData, &missing);
    bind(handle, "SetRegisterData", &api->setRegisterData, &missing);
    bind(handle, "EnCommStation", &api->enCommStation, &missing);
    bind(handle, "PLC_driver", &api->state, &missing);
    return missing;
}

} // namespace

DriverApi loadDriver(const QStringList& candidates, QString* error)
{
    DriverApi api;
    QStringList problems;
    for (const QString& candidate : candidates) {
        api.handle = dlopen(QFile::encodeName(candidate).constData(), RTLD_NOW | RTLD_LOCAL);
        if (api.handle != nullptr)
            break;
        problems << QString::fromLocal8Bit(dlerror());
    }
    if (api.handle == nullptr) {
        *error = problems.join(QLatin1Char('\n'));
        return api;
    }
    const QStringList missing = bindAll(&api);
    if (!missing.isEmpty()) {
        *error = QStringLiteral("the library lacks ") + missing.join(QLatin1String(", "));
        unloadDriver(&api);
    }
    return api;
}

void unloadDriver(DriverApi* api)
{
    if (api->handle != nullptr)
        dlclose(api->handle);
    *api = DriverApi();
}

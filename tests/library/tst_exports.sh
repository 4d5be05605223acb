#!/bin/bash
# What the dynamic linker sees of the library: its name, and its symbols, none missing, none more.
set -euo pipefail
library=$1 by_soname=$2

symbols=(SetComInfo RegistCallBackFuncIntf FlashLocalRegister QueryFinishFlag EnCommStation
    EnableEthernet ComCommunication DataCom AddListReadVar AddListWriteVar AddListOnceReadVar
    ReCreatReadVarList WhetherGroup PLCAddressChangeIntef GetRegisterData SetRegisterData
    customMessageHandler CalSUM CalCRC CalLRC CalXOR DigitalToASCII ASCIIToDigital PLC_driver
    DataStorage LB LW RWI)
diff <(printf '%s\n' "${symbols[@]}" | sort) \
    <(nm -D --defined-only --format=posix "$library" | awk '{ print $1 }' | sort)
diff <(echo libtalmor_kp410_port.so.1) <(objdump -p "$library" | awk '$1 == "SONAME" { print $2 }')
test -e "$by_soname"

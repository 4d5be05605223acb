// Takes locks by letter, L (the lists), D (the store) and S (the stations), and gives back the one
// taken last for "-".
#include "check/locks.h"

#include <memory>
#include <vector>

int main(int argc, char** argv)
{
    std::vector<std::unique_ptr<Locker>> held;
    for (const char* letter = argc == 2 ? argv[1] : ""; *letter != '\0'; ++letter) {
        if (*letter == '-')
            held.pop_back();
        else
            held.push_back(std::make_unique<Locker>(*letter == 'L'   ? &PLC_driver.listMutex
                                                    : *letter == 'D' ? &PLC_driver.storageMutex
                                                                     : &PLC_driver.stationMutex));
    }
    return 0;
}

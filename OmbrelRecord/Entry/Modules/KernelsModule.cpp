#include "OmbrelRecord/Entry/Modules/Modules.h"

using namespace RecordCore;

OMBREL_MODULE const OmbrelRecord::Modules::Kernels ombrelModule{
    {OmbrelRecord::Modules::Kernels::file, OMBREL_VERSION},
    Kernels::weighRows,
    Kernels::weighColumns,
    Kernels::rowToBgra,
    Kernels::mixUnder,
    Kernels::layOver,
    Kernels::layConstant,
    Kernels::markDifferences};

#include "OmbrelRecord/Entry/Modules/Modules.h"
#include "OmbrelRecord/Updates/Signature.h"

OMBREL_MODULE const OmbrelRecord::Modules::Signature ombrelModule{
    {OmbrelRecord::Modules::Signature::file, OMBREL_VERSION}, OmbrelRecord::isSigned};

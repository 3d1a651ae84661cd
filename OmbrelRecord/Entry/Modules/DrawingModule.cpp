#include "OmbrelRecord/Entry/Modules/Modules.h"

using namespace RecordCore;

OMBREL_MODULE const OmbrelRecord::Modules::Drawing ombrelModule{
    {OmbrelRecord::Modules::Drawing::file, OMBREL_VERSION},
    Glyphs::paintPointer,
    Glyphs::paintClick,
    Glyphs::captionLine,
    Glyphs::pill,
    Glyphs::clockBadge,
    Glyphs::textBlock,
    Glyphs::endCard,
    Glyphs::watermarkBadge,
    WallpaperFile::load,
    writePng};

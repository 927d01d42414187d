#pragma once

#include "platform/drawing/text_host.h"

namespace generalutilities {

/// Turns a font into the format that text services take: its height, which is in pixels of the
/// screen, into twips, its family into Unicode. Colour and offset are 0.
CHARFORMAT2W FontFormat(const LOGFONT& font);

}  // namespace generalutilities

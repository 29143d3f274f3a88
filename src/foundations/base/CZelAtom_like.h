// Patterns of Like: '%' stands for any bytes, none included, '_' for one byte, all else for itself. The
// pattern covers the whole text.
//
// Time: linear in the text. A part between two '%' that holds '_' and is longer than 64 bytes costs, in the
// worst case, a step per byte of the text for each 64 bytes of the part.
#pragma once

#include <string_view>

bool ZelLike(std::string_view text, std::string_view pattern);

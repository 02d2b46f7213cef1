#pragma once

#include "notes/Scrivlink.h"

#include <vector>

namespace scrivlet {

// The live short links of one note.
class ScrivlinkManager {
public:
    std::vector<Scrivlink> scrivlinks;
};

} // namespace scrivlet

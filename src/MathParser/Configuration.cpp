#include "MathParser/Configuration.h"

namespace scrivlet::math {

const Configuration &Configuration::shared()
{
    static const Configuration configuration;
    return configuration;
}

} // namespace scrivlet::math

// Comparing places.
#include "substitute/settings/Settings.h"

#include "substitute/base/Names.h"
#include "substitute/spooler/Spooler.h"

namespace kemba::substitute {

int ComparePlaces(const PrinterValue& left, const PrinterValue& right) {
    const int keys = CompareNames(left.key, right.key);
    return keys != 0 ? keys : CompareNames(left.name, right.name);
}

} // namespace kemba::substitute

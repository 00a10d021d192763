// Process-wide objects.
#include "cli/main/ProcessObjects.h"

namespace kemba {

ProcessObjects& TheProcessObjects() {
    static ProcessObjects& objects = *new ProcessObjects;
    return objects;
}

} // namespace kemba

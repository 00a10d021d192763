// Process-wide objects.
#include "cli/main/ProcessObjects.h"

namespace kemba {
namespace {

ProcessObjects& objects = *new ProcessObjects;

} // namespace

ProcessObjects& TheProcessObjects() {
    return objects;
}

} // namespace kemba

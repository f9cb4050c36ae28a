#include <ostrel/OSTAdvertisingIdentifierSource.h>

namespace ostrel {

OSTAdvertisingIdentifierSource::~OSTAdvertisingIdentifierSource() = default;

} // namespace ostrel

#include <ostrel/OSTFacebookAdapter.h>

namespace ostrel {

OSTFacebookAdapter::~OSTFacebookAdapter() = default;

} // namespace ostrel

#include <bscan/version.h>

#define BSCAN_TEXT_OF(number) #number
#define BSCAN_TEXT(number) BSCAN_TEXT_OF(number)

const char* bscan::Version() {
    return BSCAN_TEXT(BSCAN_VERSION_MAJOR) "." BSCAN_TEXT(BSCAN_VERSION_MINOR) "." BSCAN_TEXT(
        BSCAN_VERSION_PATCH);
}

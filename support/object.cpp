#include <bscan/object.h>

LObject::~LObject() = default;

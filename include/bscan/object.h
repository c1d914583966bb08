/// @file
/// The common base of the classes that an LObjList can hold.
#pragma once

#include <bscan/export.h>

/// Base class whose only purpose is a virtual destructor.
class BSCAN_EXPORT LObject {
public:
    LObject() = default;
    LObject(const LObject&) = default;
    LObject& operator=(const LObject&) = default;
    virtual ~LObject();
};

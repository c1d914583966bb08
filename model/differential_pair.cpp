#include <bscan/differential_pair.h>

#include "support/border.h"

using bscan::detail::GuardedQuietly;

CDifferentialPair::CDifferentialPair() = default;
CDifferentialPair::~CDifferentialPair() = default;

void CDifferentialPair::SetPositiveElement(const char* name) {
    if (name != nullptr) GuardedQuietly([&] { positive_element_ = std::string(name); });
}

const char* CDifferentialPair::GetPositiveElement() const { return positive_element_.c_str(); }

void CDifferentialPair::SetNegativeElement(const char* name) {
    if (name != nullptr) GuardedQuietly([&] { negative_element_ = std::string(name); });
}

const char* CDifferentialPair::GetNegativeElement() const { return negative_element_.c_str(); }

void CDifferentialPair::SetPositiveBScanPosition(int position) { positive_position_ = position; }
int CDifferentialPair::GetPositiveBScanPosition() const { return positive_position_; }
void CDifferentialPair::SetNegativeBScanPosition(int position) { negative_position_ = position; }
int CDifferentialPair::GetNegativeBScanPosition() const { return negative_position_; }

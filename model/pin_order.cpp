#include <bscan/pin_order.h>

bool operator<(const std::string& left, const std::string& right) {
    if (left.size() != right.size()) return left.size() < right.size();
    return left.compare(right) < 0;
}

bool pin_smaller(const PIN_NAME& left, const PIN_NAME& right) {
    if (left.number != right.number) return left.number > right.number;
    return ::operator<(left.letters, right.letters);
}

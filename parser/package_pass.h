// The pass over a file that numbers the pins of its package.
#pragma once

#include <bscan/parser.h>
#include <bscan/pin_name.h>

#include "parser/statement_reader.h"

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace bscan::detail {

// Reads the first pin map of a file, and no other. When its pins have letters, they become the
// parser's only package map, ordered so that a pin's place is its number.
class PackagePass {
public:
    PackagePass(BScanParser& parser, FILE* file)
        : parser_(parser), reader_(file, parser.line_number_) {}

    // 0, also when the file has no such pin map, or a negative code.
    int Read();

private:
    int FindPinMap(std::string& first_line, std::string& statement);
    static bool CollectPins(std::string_view value, std::vector<PIN_NAME>& pins);
    void Publish(std::string package, const std::vector<PIN_NAME>& pins);

    BScanParser& parser_;
    StatementReader reader_;
};

}  // namespace bscan::detail

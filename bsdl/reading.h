// What one reading of a text leaves behind, and the steps that make it.
#pragma once

#include <bscan/description.h>
#include <bscan/result.h>

#include "bsdl/findings.h"

#include <deque>
#include <string>
#include <string_view>
#include <vector>

class BScanParser;

namespace bscan::detail {

// Subjects of which a fault in the syntax may have hidden something. Rules that conclude from an
// absence ("no port of that name", "no cell 7") keep silent about them, so that one fault is told
// once.
struct Doubts {
    bool ports = false;
    bool pin_maps = false;
    bool tap = false;
    bool compliance = false;
    bool instructions = false;
    bool registers = false;
    bool cells = false;
    bool pairs = false;
    bool statements = false;  // any attribute may have been lost
};

struct Reading {
    std::string name;
    std::string text;                // what the words of the facts point into
    std::deque<std::string> joined;  // words put together from several pieces of a string
    Facts facts;
    Doubts doubts;
    FindingList found;              // while reading
    std::vector<Finding> findings;  // afterwards
    int result = kOk;
};

// Step 1: reads reading.text into the facts. Finds what is wrong with the language.
void ReadText(Reading& reading);

// Step 2: compares the facts with each other and with the standard. Finds what contradicts.
void CheckFacts(Reading& reading);

// Fills a parser's model from the facts by one of the pin maps; null for none.
int FillModel(const Facts& facts, const PinMap* package, std::string_view name,
              BScanParser& parser);

}  // namespace bscan::detail

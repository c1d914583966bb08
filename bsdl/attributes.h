// An attribute that a file sets, and the readers of each attribute's value.
#pragma once

#include "bsdl/source_reader.h"

namespace bscan::detail {

// "attribute NAME of TARGET : CLASS is", the value following.
struct Attribute {
    Word name;
    std::string_view standard_name;  // empty for one that the standard does not know
    ElementName target;
    Word target_class;
};

// Each reads source.value, which is the value of the attribute.
void ReadTapSignal(SourceReader& source, const Attribute& attribute);
void ReadTapClock(SourceReader& source, const Attribute& attribute);
void ReadCompliancePatterns(SourceReader& source, const Attribute& attribute);
void ReadInstructionLength(SourceReader& source, const Attribute& attribute);
void ReadInstructionOpcode(SourceReader& source, const Attribute& attribute);
void ReadInstructionCapture(SourceReader& source, const Attribute& attribute);
void ReadInstructionPrivate(SourceReader& source, const Attribute& attribute);
void ReadIdcodes(SourceReader& source, const Attribute& attribute);
void ReadUsercodes(SourceReader& source, const Attribute& attribute);
void ReadRegisterAccess(SourceReader& source, const Attribute& attribute);
void ReadBoundaryLength(SourceReader& source, const Attribute& attribute);
void ReadBoundaryRegister(SourceReader& source, const Attribute& attribute);
void ReadPortGrouping(SourceReader& source, const Attribute& attribute);
void ReadTextValue(SourceReader& source, const Attribute& attribute);

// The same for a pin map constant.
void ReadPinMap(SourceReader& source, PinMap& map);

// A length in bits; 0 when the value is none.
int ReadLength(SourceReader& source, Word& word);

}  // namespace bscan::detail

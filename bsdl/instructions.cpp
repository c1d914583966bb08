// Instructions: length, opcodes, capture, private ones.

#include "bsdl/attributes.h"
#include "bsdl/language.h"
#include "bsdl/list_reader.h"

#include <utility>

namespace bscan::detail {

void ReadInstructionLength(SourceReader& source, const Attribute&) {
    Facts& facts = source.reading.facts;
    facts.instruction_length = ReadLength(source, facts.instruction_length_word);
}

// "NAME (bits, bits), ..."
void ReadInstructionOpcode(SourceReader& source, const Attribute& attribute) {
    source.reading.facts.opcode_attribute = attribute.name;
    ListReader list(source);
    while (list.NextEntry()) {
        Instruction instruction;
        instruction.name = list.TakeWord();
        list.Open();
        do {
            const Word bits = list.TakeBits(source.reading.facts.instruction_length);
            if (bits.Exists()) instruction.opcodes.push_back(bits);
        } while (list.NextItem("("));
        list.Close();
        if (instruction.opcodes.empty()) {
            source.reading.found.Add(Rule::kValueMissing, instruction.name,
                                     Quoted(instruction.name.text) + " has no opcode", "");
            source.reading.doubts.instructions = true;
        }
        source.reading.facts.instructions.push_back(std::move(instruction));
        list.EndEntry();
    }
}

void ReadInstructionCapture(SourceReader& source, const Attribute&) {
    ListReader list(source);
    source.reading.facts.instruction_capture = list.TakeBits();
    list.ExpectEnd();
}

void ReadInstructionPrivate(SourceReader& source, const Attribute&) {
    ListReader list(source);
    while (list.NextEntry()) {
        const Word name = list.TakeWord();
        if (!name.Exists()) break;
        source.reading.facts.private_instructions.push_back(name);
        list.EndEntry();
    }
    list.ExpectEnd();
}

}  // namespace bscan::detail

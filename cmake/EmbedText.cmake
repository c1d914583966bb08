# Writes a text as a C++ string: cmake -DINPUT=FILE -DOUTPUT=FILE -P EmbedText.cmake
# A string literal holds at most 64 KiB by the standard, so each line is one of its own.

file(READ "${INPUT}" text)
string(REPLACE "\\" "\\\\" text "${text}")
string(REPLACE "\"" "\\\"" text "${text}")
string(REPLACE "\n" "\\n\"\n\"" text "${text}")
file(WRITE "${OUTPUT}" "\"${text}\"\n")

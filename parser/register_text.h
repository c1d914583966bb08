// The text of the boundary register.
#pragma once

#include <bscan/signal.h>

#include <string>
#include <string_view>

namespace bscan::detail {

// An entry such as "12 (BC_1, IO(3), output3, X, 11, 1, Z)" and the comment behind it, both as they
// stand in the value.
struct RegisterEntry {
    std::string_view text;
    std::string_view remark;  // without the dash that begins it and the '*' that ends it
};

// Takes the value of a boundary register, with its comments, apart.
class RegisterCutter {
public:
    explicit RegisterCutter(std::string_view value) : value_(value) {}

    // The next entry and the last of the comments behind it; false when none is left.
    bool Next(RegisterEntry& entry);
    // Whether something was met that is no entry. Nothing of such a value may be registered.
    bool IsMalformed() const { return malformed_; }

private:
    bool SkipBlanksAndQuotes();
    void CutRemarks(std::string_view& remark);
    bool CutEntry(std::string_view& text);
    bool Stop(bool malformed);

    std::string_view value_;
    std::size_t at_ = 0;
    bool malformed_ = false;
};

// Whether a value is made of entries, at least one.
bool IsRegister(std::string_view value);

// Leaves out the dashes and the white space of a remark.
void AppendRemark(std::string_view remark, std::string& text);

// The columns of an entry.
struct RegisterFields {
    int number = 0;
    std::string_view type;
    std::string_view port;  // without its subscript; empty for "*"
    int port_index = 0;
    std::string_view function;
    eSignal safe = SIG_X;
    int control = -1;  // -1 when the entry has no control columns
    eSignal disable_value = SIG_0;
    eSignal disable_result = SIG_Z;
};

// Reads the columns of an entry; false when a value is none that its column may hold.
bool CutRegisterEntry(std::string_view text, RegisterFields& fields);

}  // namespace bscan::detail

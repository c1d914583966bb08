// Netlists as KiCad exports them.

#include <bscan/board/netlist.h>

#include "board/netlist_builder.h"
#include "support/border.h"

#include <algorithm>
#include <vector>

namespace bscan {
namespace detail {
namespace {

// Lists lie within each other no deeper than this.
constexpr std::size_t kMostDepth = 200;

enum class Mark { kEnd, kOpen, kClose, kText };

// Cuts S-expressions into parentheses and texts.
class SexpLexer {
public:
    explicit SexpLexer(std::string_view text) : text_(text) {}

    Mark Next() {
        while (at_ < text_.size() && IsBlank(text_[at_])) Step();
        if (at_ == text_.size()) return Mark::kEnd;
        const char character = text_[at_];
        if (character == '(' || character == ')') {
            ++at_;
            return character == '(' ? Mark::kOpen : Mark::kClose;
        }
        word_.clear();
        if (character == '"') {
            ReadQuoted();
        } else {
            while (at_ < text_.size() && !EndsWord(text_[at_])) word_ += text_[at_++];
        }
        return Mark::kText;
    }

    const std::string& Word() const { return word_; }
    int Line() const { return line_; }
    // Where a quoted text begins that does not end; 0 without one.
    int OpenQuoteLine() const { return open_quote_line_; }

private:
    static bool IsBlank(char c) { return static_cast<unsigned char>(c) <= ' '; }
    static bool EndsWord(char c) { return IsBlank(c) || c == '(' || c == ')' || c == '"'; }

    void Step() {
        if (text_[at_] == '\n') ++line_;
        ++at_;
    }

    void ReadQuoted() {
        const int begin = line_;
        for (++at_; at_ < text_.size() && text_[at_] != '"'; Step()) {
            if (text_[at_] == '\\' && at_ + 1 < text_.size()) ++at_;
            word_ += text_[at_];
        }
        if (at_ == text_.size()) {
            open_quote_line_ = begin;
        } else {
            ++at_;
        }
    }

    std::string_view text_;
    std::size_t at_ = 0;
    int line_ = 1;
    int open_quote_line_ = 0;
    std::string word_;
};

class KicadReader {
public:
    explicit KicadReader(std::string_view text) : lexer_(WithoutMark(text)) {}

    Netlist Read() {
        while (builder_.Ok() && Take(lexer_.Next())) {
        }
        if (!lists_.empty()) Fail("The text ends within a list.");
        if (builder_.Ok() && !saw_nets_) Fail("This is no netlist of KiCad: it has no nets.");
        return builder_.Take();
    }

private:
    // What a list is, by its first word and the lists around it.
    enum class List { kUnnamed, kExport, kNets, kNet, kNetName, kNode, kPart, kPin, kOther };

    struct Row {
        std::string_view word;
        List parent;
        List list;
    };
    static constexpr Row kRows[] = {
        {"nets", List::kExport, List::kNets}, {"net", List::kNets, List::kNet},
        {"name", List::kNet, List::kNetName}, {"node", List::kNet, List::kNode},
        {"ref", List::kNode, List::kPart},    {"pin", List::kNode, List::kPin},
    };

    void Fail(std::string problem) {
        const int quote = lexer_.OpenQuoteLine();
        if (quote > 0) problem = "A quoted text does not end.";
        builder_.Fail(quote > 0 ? quote : lexer_.Line(), std::move(problem));
    }

    bool Take(Mark mark) {
        switch (mark) {
            case Mark::kEnd:
                return false;
            case Mark::kOpen:
                Open();
                return true;
            case Mark::kClose:
                Close();
                return true;
            case Mark::kText:
                Text();
                return true;
        }
        return false;
    }

    void Open() {
        if (lists_.empty() && ended_) return Fail("Text stands behind the netlist.");
        if (lists_.size() == kMostDepth) return Fail("Lists lie too deep within each other.");
        lists_.push_back(List::kUnnamed);
    }

    void Text() {
        if (lists_.empty()) return Fail("Text stands outside of the netlist.");
        List& list = lists_.back();
        if (list == List::kUnnamed) {
            list = ListOf(lexer_.Word());
            Begin(list);
            return;
        }
        std::string* const value = list == List::kNetName ? &net_name_
                                   : list == List::kPart  ? &part_
                                   : list == List::kPin   ? &pin_
                                                          : nullptr;
        if (value != nullptr && value->empty()) *value = lexer_.Word();
    }

    List ListOf(const std::string& word) {
        if (lists_.size() == 1) {
            if (word != "export") Fail("This is no netlist of KiCad: it begins otherwise.");
            return List::kExport;
        }
        const List parent = lists_[lists_.size() - 2];
        const auto* const row = std::find_if(std::begin(kRows), std::end(kRows), [&](auto& r) {
            return r.parent == parent && r.word == word;
        });
        return row == std::end(kRows) ? List::kOther : row->list;
    }

    void Begin(List list) {
        if (list == List::kNets) saw_nets_ = true;
        if (list == List::kNet) {
            net_name_.clear();
            net_line_ = lexer_.Line();
            nodes_.clear();
        }
        if (list == List::kNode) {
            part_.clear();
            pin_.clear();
        }
    }

    void Close() {
        if (lists_.empty()) return Fail("A parenthesis closes nothing.");
        const List list = lists_.back();
        lists_.pop_back();
        ended_ = lists_.empty();
        if (list == List::kNode) nodes_.push_back({{part_, pin_}, lexer_.Line()});
        if (list == List::kNet) EndNet();
    }

    // Its name may stand behind its nodes.
    void EndNet() {
        const int net = builder_.Net(net_name_, net_line_);
        for (const Node& node : nodes_) {
            if (!builder_.Ok()) return;
            builder_.Add(net, node.pin.part, node.pin.pin, node.line);
        }
    }

    struct Node {
        NetlistPin pin;
        int line = 0;
    };

    SexpLexer lexer_;
    NetlistBuilder builder_;
    std::vector<List> lists_;  // the outermost first
    bool saw_nets_ = false;
    bool ended_ = false;
    std::string net_name_, part_, pin_;
    int net_line_ = 0;
    std::vector<Node> nodes_;
};

}  // namespace
}  // namespace detail

Netlist ReadKicadNetlist(std::string_view text) {
    Netlist failed;
    failed.problem = "There is not enough memory.";
    if (text.size() > kMaxNetlistLength) {
        failed.problem = "The netlist is too long.";
        return failed;
    }
    return detail::Guarded([&] { return detail::KicadReader(text).Read(); }, failed);
}

}  // namespace bscan

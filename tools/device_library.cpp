#include "device_library.h"

#include <bscan/bscan.h>

#include "commands.h"
#include "file_list.h"
#include "printable.h"
#include "table.h"
#include "text_file.h"
#include "thread_pool.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

namespace tool {
namespace {

// The bits that an IDCODE_REGISTER value fixes.
struct IdcodePattern {
    std::uint32_t value = 0;
    std::uint32_t known = 0;
};

std::optional<IdcodePattern> ParsePattern(std::string_view text) {
    if (text.size() != 32) return std::nullopt;
    IdcodePattern pattern;
    for (const char digit : text) {
        pattern.value = pattern.value << 1U | (digit == '1' ? 1U : 0U);
        pattern.known = pattern.known << 1U | (digit == '0' || digit == '1' ? 1U : 0U);
    }
    return pattern;
}

constexpr std::uint32_t kVersion = 0xF0000000U;

enum class Fit { kNone, kOtherVersion, kExact };

Fit FitOf(const bscan::Facts& facts, std::uint32_t idcode) {
    Fit best = Fit::kNone;
    for (const bscan::Word& word : facts.idcodes) {
        const std::optional<IdcodePattern> pattern = ParsePattern(word.text);
        if (!pattern) continue;
        const std::uint32_t differing = (pattern->value ^ idcode) & pattern->known;
        const Fit fit = differing == 0                 ? Fit::kExact
                        : (differing & ~kVersion) == 0 ? Fit::kOtherVersion
                                                       : Fit::kNone;
        best = std::max(best, fit);
    }
    return best;
}

LibraryMatch MakeMatch(std::uint32_t idcode, const std::string& file, const bscan::Facts& facts,
                       Fit fit) {
    LibraryMatch match{idcode,
                       file,
                       std::string(facts.entity.text),
                       {},
                       facts.instruction_length,
                       fit == Fit::kOtherVersion};
    for (const bscan::PinMap& map : facts.pin_maps) match.packages.emplace_back(map.name.text);
    return match;
}

// What one file says to the question.
struct Answer {
    int code = bscan::kOk;
    std::vector<LibraryMatch> matches;
};

Answer Ask(const std::string& file, const std::vector<std::uint32_t>& idcodes) {
    const LoadedText loaded = LoadText(file);
    if (loaded.code != bscan::kOk) return {loaded.code, {}};
    const auto description = bscan::Description::Parse(loaded.text, file.c_str());
    Answer answer{description.Result(), {}};
    for (const std::uint32_t idcode : idcodes) {
        const Fit fit = FitOf(description.GetFacts(), idcode);
        if (fit == Fit::kNone) continue;
        answer.matches.push_back(MakeMatch(idcode, file, description.GetFacts(), fit));
    }
    return answer;
}

}  // namespace

std::vector<LibraryMatch> FindMatches(const std::vector<std::uint32_t>& idcodes,
                                      const std::vector<std::string>& paths, int jobs) {
    const std::vector<std::string> files = FindFiles(paths);
    std::vector<Answer> answers(files.size());
    RunInThreads(files.size(), jobs, [&](std::size_t i) { answers[i] = Ask(files[i], idcodes); });
    std::vector<LibraryMatch> matches;
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (answers[i].code != bscan::kOk) {
            Write(stderr, fmt::format("bscan: {}: {}\n", Printable(files[i]),
                                      DescribeLoad(answers[i].code)));
        }
        std::move(answers[i].matches.begin(), answers[i].matches.end(),
                  std::back_inserter(matches));
    }
    // In the order in which the codes were asked for, those of the very version first.
    std::stable_sort(matches.begin(), matches.end(), [&](const auto& a, const auto& b) {
        const auto rank = [&](const LibraryMatch& match) {
            const auto place = std::find(idcodes.begin(), idcodes.end(), match.idcode);
            return std::pair(place - idcodes.begin(), match.version_differs);
        };
        return rank(a) < rank(b);
    });
    return matches;
}

int PrintMatches(const std::vector<std::uint32_t>& idcodes, const std::vector<std::string>& paths,
                 int jobs, Format format) {
    const std::vector<LibraryMatch> matches = FindMatches(idcodes, paths, jobs);
    Table table{{{"idcode", "IDCODE"},
                 {"component", "Component"},
                 {"packages", "Packages"},
                 {"instruction_length", "IR bits"},
                 {"version", "Version"},
                 {"file", "File"}},
                {}};
    bool all_found = true;
    for (const std::uint32_t idcode : idcodes) {
        const std::string text = fmt::format("0x{:08X}", idcode);
        bool found = false;
        for (const LibraryMatch& match : matches) {
            if (match.idcode != idcode) continue;
            found = true;
            table.rows.push_back({text, match.component, Json(match.packages),
                                  match.instruction_length,
                                  match.version_differs ? "another" : "same", match.file});
        }
        if (!found) table.rows.push_back({text, Json(), Json::array(), Json(), Json(), Json()});
        all_found = all_found && found;
    }
    if (format == Format::kJson) {
        Print(stdout, ToJson(table), 2);
    } else {
        Print(stdout, table, format);
    }
    return all_found ? kSuccess : kProblem;
}

}  // namespace tool
